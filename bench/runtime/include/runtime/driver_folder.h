#pragma once

#include <filesystem>
#include <string>

namespace bench {

// A driver as it is installed: a folder with a manifest, a library under bin/win64 and resources.
struct DriverFolder {
  std::filesystem::path root;             // empty when only a library was named
  std::filesystem::path library;          // the DLL
  std::filesystem::path defaultSettings;  // empty when the folder has none
  std::string name;                       // "ombrel" for driver_ombrel.dll
};

// Finds a driver the way the runtime does. `path` is the driver's folder (the manifest's name, or else
// the folder's, decides which library is taken) or the library itself (its folder is found three levels
// up if it lies in bin/win64). Throws std::runtime_error if there is no such library.
[[nodiscard]] DriverFolder FindDriver(const std::filesystem::path& path);

}  // namespace bench
