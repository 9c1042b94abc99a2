#include "paths.h"

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

std::filesystem::path DriverFolder() { return FromEnvironment("OMBREL_TEST_DRIVER_FOLDER"); }
std::filesystem::path SourceRoot() { return FromEnvironment("OMBREL_TEST_SOURCES"); }

}  // namespace ombrel::test
