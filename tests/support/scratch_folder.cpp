#include "test_files/scratch_folder.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "base/wait.h"

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;

// create_directory tells whether it made the folder, so that two programs never share one.
fs::path MakeFolder() {
  const fs::path parent = fs::weakly_canonical(fs::temp_directory_path());
  for (int number = 0; number < 10'000; ++number) {
    fs::path folder = parent / ("ombrel_test_" + std::to_string(number));
    std::error_code error;
    if (fs::create_directory(folder, error)) return folder;
  }
  throw std::runtime_error("cannot make a folder in " + ToUtf8(parent));
}

}  // namespace

ScratchFolder::ScratchFolder() : root_(new fs::path(MakeFolder())) {}

// Windows keeps a program's file for a moment after its process has ended.
void ScratchFolder::RemoveAll::operator()(const fs::path* folder) const {
  const std::unique_ptr<const fs::path> owned(folder);
  const auto isGone = [&] {
    std::error_code error;
    fs::remove_all(*folder, error);
    return !error;
  };
  static_cast<void>(bench::WaitUntil(isGone, std::chrono::seconds(2)));
}

fs::path ScratchFolder::At(const std::string& path) const { return (*root_ / FromUtf8(path)).make_preferred(); }

std::string ScratchFolder::TextOf(const std::string& path) const { return ToUtf8(At(path)); }

std::string ScratchFolder::Write(const std::string& file, const std::string& bytes) const {
  fs::create_directories(At(file).parent_path());
  std::ofstream(At(file), std::ios::binary) << bytes;
  return TextOf(file);
}

std::string ScratchFolder::Read(const std::string& file) const { return ReadAll(At(file)); }

fs::path FromUtf8(const std::string& text) { return fs::path(std::u8string(text.begin(), text.end())); }

std::string ToUtf8(const fs::path& path) {
  const std::u8string bytes = path.u8string();
  return {bytes.begin(), bytes.end()};
}

std::string ReadAll(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

fs::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

}  // namespace ombrel::test
