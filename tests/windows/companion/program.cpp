#include "program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

SECURITY_ATTRIBUTES Inheritable() {
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof(attributes);
  attributes.bInheritHandle = TRUE;
  return attributes;
}

}  // namespace

bool Program::Start(const std::filesystem::path& path, const std::vector<std::string>& arguments,
                    const std::filesystem::path& output) {
  output_ = output;
  std::string line = '"' + path.string() + '"';
  for (const std::string& argument : arguments) line += " \"" + argument + '"';
  SECURITY_ATTRIBUTES inheritable = Inheritable();
  HANDLE readEnd = nullptr, writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) return false;
  const bench::OwnedHandle childInput(readEnd);
  input_ = bench::OwnedHandle(writeEnd);
  SetHandleInformation(writeEnd, HANDLE_FLAG_INHERIT, 0);
  const bench::OwnedHandle childOutput(CreateFileA(output.string().c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                                   &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = childInput.Get();
  startup.hStdOutput = startup.hStdError = childOutput.Get();
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started))
    return false;
  const bench::OwnedHandle thread(started.hThread);
  process_ = bench::OwnedHandle(started.hProcess);
  return true;
}

std::optional<std::uint32_t> Program::Wait(std::uint32_t timeoutMs) {
  if (WaitForSingleObject(process_.Get(), timeoutMs) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 0;
  GetExitCodeProcess(process_.Get(), &code);
  return code;
}

Program::~Program() {
  if (process_ && !Wait(0)) {
    TerminateProcess(process_.Get(), 99);
    Wait(5000);
  }
}

std::string Program::Output() const {
  std::ifstream file(output_);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string TestArgument(const std::string& name) {
  const std::string option = "--" + name + '=';
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (argument.starts_with(option)) return argument.substr(option.size());
  }
  ADD_FAILURE() << "the test needs " << option;
  return {};
}

TestFolder::TestFolder()
    : path_(std::filesystem::temp_directory_path() / ("companion_" + std::to_string(GetCurrentProcessId()) + '_' +
                                                      testing::UnitTest::GetInstance()->current_test_info()->name())) {
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

TestFolder::~TestFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TestFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(path_ / name) << text;
  return (path_ / name).string();
}
