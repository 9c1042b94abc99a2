#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "test_files/command_line.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {

// A computer with a runtime, its path registry, and the driver's folder on it, all below one new folder.
class InstallTest : public testing::Test, protected ScratchFolder {
 protected:
  using Call = std::vector<std::string>;

  void SetUp() override;

  // Sets up a runtime with a stand-in vrpathreg.exe, and the driver's folder with what the scripts look for in it.
  void PutRuntime(const std::string& folder);
  void PutDriver(const std::string& folder);
  // Unpacks what is shipped there, over whatever is there; it is the driver's folder from now on.
  void UnpackOver(const std::string& folder);
  // All files in the driver's folder, sorted.
  [[nodiscard]] std::vector<std::string> Files() const;
  // The registry as the runtime writes it, naming that runtime and two other drivers.
  void WriteRegistry(const std::string& runtime) const;
  void WriteRegistryText(const std::string& bytes) const;
  // From now on vrpathreg.exe only returns this.
  void LetVrpathregAnswer(int code) const;

  // Runs a script of the driver's folder, with LOCALAPPDATA in the new folder.
  Outcome Run(const std::string& script, const std::string& arguments = " /quiet") const;
  // Runs a command line in a folder.
  Outcome RunIn(const std::filesystem::path& workingFolder, const std::string& command) const;

  [[nodiscard]] std::vector<Call> Calls() const;
  [[nodiscard]] nlohmann::json Registry() const;

  std::string driver;   // the driver's folder
  std::string runtime;  // the runtime's folder
};

}  // namespace ombrel::test
