#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/child_process.h"
#include "test_files/command_line.h"
#include "test_files/scratch_folder.h"

namespace ombrel::doctor::test {

// A runtime, a companion and the driver's folder on a disk, all below one new folder, with the doctor in its place. As
// made it is sound. Paths are UTF-8, relative to that folder.
class MadeUpComputer : public testing::Test, protected ombrel::test::ScratchFolder {
 protected:
  using Outcome = ombrel::test::Outcome;

  void SetUp() override;
  void TearDown() override { ForgetInstalledRuntime(); }

  // Runs the doctor that lies in the driver's folder.
  Outcome RunDoctor(const std::string& arguments) const;
  // The identifiers of what it finds.
  [[nodiscard]] std::vector<std::string> Found() const;

  void PutDriver(const std::string& folder);
  // Replaces the one place in a file, and keeps its length.
  void Patch(const std::string& file, const std::string& from, const std::string& to) const;
  void WriteRegistry(const std::vector<std::string>& runtimes, const std::vector<std::string>& drivers) const;
  void WriteSettings(const std::string& sections) const {
    Write("Steam/config/steamvr.vrsettings", "{" + sections + "}");
  }
  void WriteLog(const std::string& lines) const { Write("Steam/logs/vrserver.txt", "startup with PID=1\r\n" + lines); }
  // Ends the companion that runs, and starts one under that name unless it is empty.
  void StartCompanion(const std::string& name);

  // In the machine's registry, which outlives a test.
  static void ForgetInstalledRuntime();

  // Every file with its contents.
  [[nodiscard]] std::map<std::string, std::string> Files() const;

  std::string driver;  // the driver's folder

 private:
  std::unique_ptr<bench::ChildProcess> companion_;
  int companions_ = 0;
};

inline constexpr const char* kUninstallKey = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\Steam App 250820)";
inline constexpr const char* kRuntimeFolder = "Steam/common/SteamVR";

}  // namespace ombrel::doctor::test
