#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/process.h"

namespace ombrel::doctor {

enum class PathKind { kMissing, kFile, kFolder };
enum class ReadState { kMissing, kUnreadable, kRead };
enum class FilePart { kStart, kEnd };

struct FileBytes {
  ReadState state = ReadState::kMissing;
  std::string bytes;
};

struct FolderEntry {
  std::string name;
  bool isFolder = false;
  std::int64_t writtenAt = 0;  // seconds since 1970
  std::string written;         // date and time, local, for people
};

struct Adapter {
  std::string name;
  std::string luid;
  bool isSoftware = false;
  bool isPreferred = false;        // by the driver's own rule
  std::string driverVersion = {};  // of its graphics driver; empty when the system does not tell
  std::uint64_t memoryMiB = 0;     // its own
};

// How another process's rights compare with ours: a pipe that one of the two makes may be closed to the other.
enum class Rights { kSame, kOther };

struct Account {
  std::string user;
  std::string signedIn;  // who sits at the desktop; empty when the system does not tell
  bool isElevated = false;
  // Everything that gives away whose computer this is: names of users, of the computer, of the home folder, in each
  // spelling that a file may have.
  std::vector<std::string> userNames, computerNames;
};

// What became of loading a library in a process of its own.
struct LoadAttempt {
  std::uint32_t error = 0;  // 0: loaded, and its factory is exported; otherwise the system's error
  bool hasCrashed = false;  // error is the exception then
};

// A computer, as far as the doctor looks at it. Nothing here changes anything. Paths and texts are UTF-8.
class Machine {
 public:
  virtual ~Machine() = default;

  // The driver's folder, two above this program's.
  virtual std::string DriverFolder() = 0;
  virtual std::optional<std::string> Environment(const char* name) = 0;

  // At most so many bytes from a file's start or before its end. Others may be writing to it.
  virtual FileBytes Read(const std::string& path, FilePart part, std::size_t most) = 0;
  virtual PathKind Kind(const std::string& path) = 0;
  virtual std::vector<FolderEntry> List(const std::string& folder) = 0;
  virtual bool IsOnNetwork(const std::string& path) = 0;

  // The folder that the machine's list of installed programs names for the runtime.
  virtual std::optional<std::string> UninstallFolder() = 0;
  virtual std::vector<ProcessEntry> Processes() = 0;
  virtual Rights RightsOf(std::uint32_t processId) = 0;
  // Without what stands before each; nothing when the system does not list them.
  virtual std::optional<std::vector<std::string>> PipeNames() = 0;
  virtual std::vector<Adapter> Adapters() = 0;
  virtual Account WhoAmI() = 0;
  virtual LoadAttempt TryLoad(const std::string& library) = 0;
};

}  // namespace ombrel::doctor
