#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "doctor/binary_files.h"
#include "doctor/json_file.h"
#include "doctor/machine.h"

namespace ombrel::doctor {

// The driver's folder, and what lies in it.
struct DriverFolder {
  std::string path;
  bool isOnNetwork = false;
  std::vector<std::string> missing;  // files, relative to the folder
  JsonFile manifest, defaults;
  std::vector<JsonFile> others;  // further files of JSON that the runtime reads
  bool hasLibrary = false;
  std::optional<std::uint16_t> processor;
  LoadAttempt load;
};

// A folder in the runtime's list of drivers.
struct ListedFolder {
  std::string path;
  bool isThere = false;
  bool isOurs = false;          // holds a driver of our name, or is gone and was called so
  bool holdsInnerCopy = false;  // holds no driver itself, but a folder of our name with ours
  bool isAlwaysActive = false;
};

struct Runtime {
  JsonFile pathRegistry;
  std::vector<std::string> wrongKeys;  // of the path registry
  std::vector<std::string> folders;    // as listed
  std::string folder;                  // the first of them that exists
  std::string missingProgram;          // of that folder
  std::optional<std::string> installed;
  std::vector<ListedFolder> drivers;
  JsonFile settings;
  bool isRunning = false;
};

struct ServerLog {
  std::string path;
  ReadState state = ReadState::kMissing;
  std::string written;
  std::vector<std::string> lines;  // of the newest session
};

struct Companion {
  bool isRunning = false;
  std::string otherSpelling;
  bool hasOtherRights = false;                    // than the runtime or, without one, than the doctor
  std::optional<std::vector<std::string>> pipes;  // which of the two it offers; nothing when that cannot be told
};

struct CrashDump {
  std::string path, written;
  CrashSite site;
};

// All that the doctor saw of a computer, before it is judged.
struct Survey {
  DriverFolder driver;
  std::string outerCopy;  // the folder around the driver's, if that holds one, too
  Runtime runtime;
  ServerLog log;
  std::string previousLog;  // of the session before
  Companion companion;
  std::vector<Adapter> adapters;
  Account account;
  std::optional<CrashDump> crash;       // the newest that names us
  std::vector<std::string> crashDumps;  // names and dates of all
};

[[nodiscard]] Survey Look(Machine& machine);

// Parts of it, for who changes the runtime's list.
[[nodiscard]] std::string PathRegistryFile(const std::string& localApplicationData);
[[nodiscard]] Runtime LookAtRuntime(Machine& machine);

// The list of the files that are shipped, relative to the driver's folder.
[[nodiscard]] std::string ListOfFiles();
[[nodiscard]] std::vector<std::string> ReadListOfFiles(Machine& machine, const std::string& file);

inline constexpr const char* kLibrary = "bin\\win64\\driver_ombrel.dll";
inline constexpr const char* kManifest = "driver.vrdrivermanifest";
inline constexpr const char* kRegistrationProgram = "bin\\win64\\vrpathreg.exe";

}  // namespace ombrel::doctor
