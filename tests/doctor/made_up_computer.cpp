#include "made_up_computer.h"

#include <windows.h>

#include <stdexcept>

namespace ombrel::doctor::test {

namespace fs = std::filesystem;

using ombrel::test::FromEnvironment;

void MadeUpComputer::SetUp() {
  ForgetInstalledRuntime();
  for (const char* program : {"vrpathreg.exe", "vrserver.exe"}) {
    Write(std::string(kRuntimeFolder) + "/bin/win64/" + program, "");
  }
  PutDriver("VR/ombrel");
  WriteRegistry({kRuntimeFolder}, {driver});
  WriteSettings("");
  WriteLog("Ombrel process is running\r\nHMD activated with id 0 \r\n");
  SetEnvironmentVariableW(L"LOCALAPPDATA", At("Local").c_str());
  StartCompanion("Ombrel.exe");
}

void MadeUpComputer::ForgetInstalledRuntime() {
  RegDeleteKeyExA(HKEY_LOCAL_MACHINE, kUninstallKey, KEY_WOW64_64KEY, 0);
  RegDeleteKeyExA(HKEY_LOCAL_MACHINE, kUninstallKey, KEY_WOW64_32KEY, 0);
}

void MadeUpComputer::PutDriver(const std::string& folder) {
  driver = folder;
  fs::create_directories(At(folder).parent_path());
  fs::copy(FromEnvironment("OMBREL_TEST_DRIVER_FOLDER"), At(folder),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  fs::copy_file(FromEnvironment("OMBREL_TEST_DOCTOR"), At(folder + "/bin/win64/ombrel_doctor.exe"),
                fs::copy_options::overwrite_existing);
}

void MadeUpComputer::Patch(const std::string& file, const std::string& from, const std::string& to) const {
  std::string bytes = Read(file);
  const std::size_t at = bytes.find(from);
  if (at == std::string::npos || from.size() != to.size()) throw std::runtime_error("nothing to patch: " + from);
  Write(file, bytes.replace(at, from.size(), to));
}

void MadeUpComputer::WriteRegistry(const std::vector<std::string>& runtimes,
                                   const std::vector<std::string>& drivers) const {
  nlohmann::json registry = {{"config", {TextOf("Steam/config")}}, {"log", {TextOf("Steam/logs")}}};
  for (const std::string& each : runtimes) registry["runtime"].push_back(TextOf(each));
  for (const std::string& each : drivers) registry["external_drivers"].push_back(TextOf(each));
  // With what a player's file may have: a mark of byte order, comments, escapes.
  Write("Local/openvr/openvrpaths.vrpath", "\xEF\xBB\xBF// by hand\n" + registry.dump(3, ' ', true));
}

void MadeUpComputer::StartCompanion(const std::string& name) {
  companion_.reset();
  if (name.empty()) return;
  // In a folder of its own: two names that differ in case alone are one file.
  const fs::path program = At("companion " + std::to_string(++companions_)) / name;
  fs::create_directories(program.parent_path());
  fs::copy_file(FromEnvironment("OMBREL_TEST_COMPANION"), program, fs::copy_options::overwrite_existing);
  companion_ = std::make_unique<bench::ChildProcess>(program);
}

MadeUpComputer::Outcome MadeUpComputer::RunDoctor(const std::string& arguments) const {
  return ombrel::test::RunCommandLine(
      "\"" + TextOf(driver + "/bin/win64/ombrel_doctor.exe") + "\" --no-pause " + arguments, At(""));
}

std::vector<std::string> MadeUpComputer::Found() const {
  const Outcome outcome = RunDoctor("--json --language en");
  const auto report = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(outcome.exitCode, report["result"] == "well" ? 0 : 1);
  std::vector<std::string> ids;
  for (const auto& finding : report["findings"]) ids.push_back(finding["id"]);
  return ids;
}

std::map<std::string, std::string> MadeUpComputer::Files() const {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(At(""))) {
    if (entry.is_regular_file()) files[ombrel::test::ToUtf8(entry.path())] = ombrel::test::ReadAll(entry.path());
  }
  return files;
}

}  // namespace ombrel::doctor::test
