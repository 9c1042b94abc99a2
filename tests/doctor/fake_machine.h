#pragma once

#include <map>
#include <string>
#include <vector>

#include "doctor/checks.h"
#include "doctor/machine.h"
#include "doctor/registrar.h"

namespace ombrel::doctor::test {

inline constexpr const char* kRegistry = R"(C:\Users\Joerg\AppData\Local\openvr\openvrpaths.vrpath)";
inline constexpr const char* kRuntime = R"(C:\Steam\steamapps\common\SteamVR)";
inline constexpr const char* kOther = R"(D:\Old\ombrel)";  // where another copy of the driver may lie

// A computer of which everything is made up. As made it is sound: runtime, companion and driver in order, a session over.
class FakeMachine : public Machine, public Hands {
 public:
  FakeMachine();

  std::string DriverFolder() override { return driver; }
  std::optional<std::string> Environment(const char* name) override;
  FileBytes Read(const std::string& path, FilePart part, std::size_t most) override;
  PathKind Kind(const std::string& path) override;
  std::vector<FolderEntry> List(const std::string& folder) override;
  bool IsOnNetwork(const std::string& path) override { return path.starts_with("\\\\") || path.starts_with("N:"); }
  std::optional<std::string> UninstallFolder() override { return installed; }
  std::vector<ProcessEntry> Processes() override { return processes; }
  Rights RightsOf(std::uint32_t processId) override { return rights[processId]; }
  std::optional<std::vector<std::string>> PipeNames() override { return pipes; }
  std::vector<Adapter> Adapters() override { return adapters; }
  Account WhoAmI() override { return account; }
  LoadAttempt TryLoad(const std::string&) override { return load; }

  std::optional<int> Run(const std::string& program, const std::vector<std::string>& arguments) override;
  bool Delete(const std::string& file) override;
  bool IsInUse(const std::string& file) override { return file == inUse; }

  void Put(const std::string& path, const std::string& bytes);
  void Remove(const std::string& path) { files_.erase(path); }
  [[nodiscard]] bool Has(const std::string& path) const { return files_.contains(path); }
  // The driver's files, in another place.
  void PutDriver(const std::string& folder);
  void WriteRegistry(const std::vector<std::string>& runtimes, const std::vector<std::string>& drivers);
  void WriteSettings(const std::string& sections);
  void WriteLog(const std::vector<std::string>& lines);
  // Moves the driver, and what the registry says of it.
  void MoveDriver(const std::string& folder);

  std::string driver;
  std::map<std::string, std::string> environment;
  std::optional<std::string> installed;
  std::vector<ProcessEntry> processes;
  std::map<std::uint32_t, Rights> rights;
  std::optional<std::vector<std::string>> pipes;
  std::vector<Adapter> adapters;
  Account account;
  LoadAttempt load;
  std::string unreadable;  // a file
  std::string inUse;       // a file
  int exitCode = 0;        // of programs
  std::vector<std::string> calls;

 private:
  std::map<std::string, std::string> files_;
};

// What is found on it, whole and by identifier.
[[nodiscard]] std::vector<Finding> Examined(FakeMachine& machine);
[[nodiscard]] std::vector<std::string> Ids(FakeMachine& machine);

// The start of a library for that processor, as far as it is looked at.
[[nodiscard]] std::string LibraryFor(std::uint16_t processor);

// A crash dump of a process with the modules "vrserver.exe" at 0x10000 and, behind it, the named one at 0x20000, each
// 0x1000 long.
[[nodiscard]] std::string DumpWith(const std::string& module, std::uint64_t exceptionAddress);

}  // namespace ombrel::doctor::test
