#pragma once

#include "doctor/machine.h"
#include "doctor/registrar.h"

namespace ombrel::doctor {

// The computer that this program runs on.
class WindowsMachine : public Machine, public Hands {
 public:
  std::string DriverFolder() override;
  std::optional<std::string> Environment(const char* name) override;
  FileBytes Read(const std::string& path, FilePart part, std::size_t most) override;
  PathKind Kind(const std::string& path) override;
  std::vector<FolderEntry> List(const std::string& folder) override;
  bool IsOnNetwork(const std::string& path) override;
  std::optional<std::string> UninstallFolder() override;
  std::vector<ProcessEntry> Processes() override { return ListProcesses(); }
  Rights RightsOf(std::uint32_t processId) override;
  std::optional<std::vector<std::string>> PipeNames() override;
  std::vector<Adapter> Adapters() override;
  Account WhoAmI() override;
  LoadAttempt TryLoad(const std::string& library) override;

  std::optional<int> Run(const std::string& program, const std::vector<std::string>& arguments) override;
  bool Delete(const std::string& file) override;
  bool IsInUse(const std::string& file) override;
};

// What TryLoad has another process of this program do: loads the library and returns 0 or the system's error.
[[nodiscard]] int ProbeLoad(const std::string& library);

}  // namespace ombrel::doctor
