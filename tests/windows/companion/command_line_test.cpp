// What a companion's program is started with, taken apart again by the system.
#include "base/command_line.h"

#include <gtest/gtest.h>

#include <windows.h>
// windows.h must come first.
#include <shellapi.h>

#include <memory>
#include <string>
#include <vector>

namespace bench {
namespace {

using Arguments = std::vector<std::string>;

Arguments TakenApart(const std::wstring& line) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(CommandLineToArgvW(line.c_str(), &count), &LocalFree);
  Arguments arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(std::filesystem::path(words.get()[i]).string());
  return arguments;
}

TEST(CommandLine, KeepsEveryArgument) {
  const std::string program = R"(C:\Program Files\Ombrel\Ombrel.exe)";
  const Arguments arguments = {"plain", "", "two words", R"(C:\a folder\)", R"(ends in two\\)", R"({"rate": "90"})",
                               R"(\"before\\" quotes)", "a & b | c > d", "tab\there"};
  Arguments expected = arguments;
  expected.insert(expected.begin(), program);
  EXPECT_EQ(TakenApart(CommandLine(program, arguments)), expected);
}

}  // namespace
}  // namespace bench
