#include "program.h"

#include <gtest/gtest.h>

void Program::Start(const std::filesystem::path& path, const std::vector<std::string>& arguments,
                    const std::filesystem::path& output) {
  output_ = output;
  process_.emplace(path, arguments, output);
}

std::string Program::Output() const { return ombrel::test::ReadAll(output_); }

std::string TestArgument(const std::string& name) {
  const std::string option = "--" + name + '=';
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (argument.starts_with(option)) return argument.substr(option.size());
  }
  ADD_FAILURE() << "the test needs " << option;
  return {};
}
