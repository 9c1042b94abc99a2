#include "program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

void Program::Start(const std::filesystem::path& path, const std::vector<std::string>& arguments,
                    const std::filesystem::path& output) {
  output_ = output;
  process_.emplace(path, arguments, output);
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
