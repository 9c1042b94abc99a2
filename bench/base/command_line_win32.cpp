#include "base/command_line.h"

namespace bench {
namespace {

// Backslashes stand for themselves, but for those before a quote: there each needs another.
std::wstring Quoted(const std::wstring& argument) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t letter : argument) {
    if (letter == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = letter == L'\\' ? backslashes + 1 : 0;
    quoted += letter;
  }
  return quoted.append(backslashes, L'\\') + L'"';
}

}  // namespace

std::wstring CommandLine(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  std::wstring line = L'"' + program.native() + L'"';
  for (const std::string& argument : arguments) line += L' ' + Quoted(std::filesystem::path(argument).native());
  return line;
}

}  // namespace bench
