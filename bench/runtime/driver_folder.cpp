#include "runtime/driver_folder.h"

#include <fstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace bench {
namespace {

constexpr std::string_view kLibraryPrefix = "driver_";

std::string NameOfFolder(const std::filesystem::path& folder) {
  std::ifstream stream(folder / "driver.vrdrivermanifest", std::ios::binary);
  if (stream) {
    const nlohmann::json manifest = nlohmann::json::parse(stream, nullptr, false);
    if (manifest.is_object() && manifest.contains("name") && manifest["name"].is_string()) {
      return manifest["name"].get<std::string>();
    }
  }
  return std::filesystem::weakly_canonical(folder).filename().string();
}

std::string NameOfLibrary(const std::filesystem::path& library) {
  const std::string stem = library.stem().string();
  return stem.starts_with(kLibraryPrefix) ? stem.substr(kLibraryPrefix.size()) : stem;
}

std::filesystem::path RootOfLibrary(const std::filesystem::path& library) {
  const std::filesystem::path platform = library.parent_path();
  const bool installed = platform.filename() == "win64" && platform.parent_path().filename() == "bin";
  return installed ? platform.parent_path().parent_path() : std::filesystem::path();
}

}  // namespace

DriverFolder FindDriver(const std::filesystem::path& path) {
  DriverFolder driver;
  if (std::filesystem::is_directory(path)) {
    driver.root = path;
    driver.name = NameOfFolder(path);
    driver.library = path / "bin" / "win64" / (std::string(kLibraryPrefix) + driver.name + ".dll");
  } else {
    driver.library = std::filesystem::absolute(path);
    driver.root = RootOfLibrary(driver.library);
    driver.name = NameOfLibrary(driver.library);
  }
  if (!std::filesystem::is_regular_file(driver.library)) {
    throw std::runtime_error("no driver library " + driver.library.string());
  }
  const std::filesystem::path settings = driver.root / "resources" / "settings" / "default.vrsettings";
  if (!driver.root.empty() && std::filesystem::is_regular_file(settings)) {
    driver.defaultSettings = settings;
  }
  return driver;
}

}  // namespace bench
