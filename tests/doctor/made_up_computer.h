#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace ombrel::doctor::test {

// A runtime, a companion and the driver's folder on a disk, all below one new folder, with the doctor in its place. As
// made it is sound. Paths are UTF-8, relative to that folder.
class MadeUpComputer : public testing::Test {
 protected:
  struct Outcome {
    int exitCode = -1;
    std::string output;
  };

  void SetUp() override;
  void TearDown() override;

  // Runs the doctor that lies in the driver's folder.
  Outcome RunDoctor(const std::string& arguments) const;
  // The identifiers of what it finds.
  [[nodiscard]] std::vector<std::string> Found() const;

  void PutDriver(const std::string& folder);
  void Write(const std::string& file, const std::string& bytes) const;
  [[nodiscard]] std::string Read(const std::string& file) const;
  // Replaces the one place in a file, and keeps its length.
  void Patch(const std::string& file, const std::string& from, const std::string& to) const;
  void Remove(const std::string& file) const { std::filesystem::remove(At(file)); }
  void WriteRegistry(const std::vector<std::string>& runtimes, const std::vector<std::string>& drivers) const;
  void WriteSettings(const std::string& sections) const {
    Write("Steam/config/steamvr.vrsettings", "{" + sections + "}");
  }
  void WriteLog(const std::string& lines) const { Write("Steam/logs/vrserver.txt", "startup with PID=1\r\n" + lines); }
  // Ends the companion that runs, and starts one under that name unless it is empty.
  void StartCompanion(const std::string& name);

  // In the machine's registry, which outlives a test.
  static void ForgetInstalledRuntime();

  [[nodiscard]] std::filesystem::path At(const std::string& path) const;
  [[nodiscard]] std::string TextOf(const std::string& path) const;
  // Every file with its contents.
  [[nodiscard]] std::map<std::string, std::string> Files() const;

  std::string driver;  // the driver's folder

 private:
  // Beside the computer, which is not to change.
  [[nodiscard]] std::filesystem::path OutputFile() const { return root_.native() + L".txt"; }

  std::filesystem::path root_;
  void* companion_ = nullptr;
  int companions_ = 0;
};

inline constexpr const char* kUninstallKey = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\Steam App 250820)";
inline constexpr const char* kRuntimeFolder = "Steam/common/SteamVR";

}  // namespace ombrel::doctor::test
