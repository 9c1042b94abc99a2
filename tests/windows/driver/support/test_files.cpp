#include "support/test_files.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace ombrel::test {
namespace {

std::filesystem::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

}  // namespace

std::filesystem::path DriverLibrary() { return FromEnvironment("OMBREL_TEST_DRIVER"); }
std::filesystem::path IdleProgram() { return FromEnvironment("OMBREL_TEST_IDLE_PROGRAM"); }

std::filesystem::path MakeTemporaryFolder() {
  static std::atomic<int> count = 0;
  const std::string name =
      "ombrel_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(count.fetch_add(1));
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
  std::filesystem::create_directories(folder);
  return folder;
}

}  // namespace ombrel::test
