#include "install_test.h"

#include <windows.h>

#include <algorithm>
#include <fstream>

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRegistry = "AppData/openvr/openvrpaths.vrpath";
constexpr const char* kListOfFiles = "/resources/files-" OMBREL_TEST_VERSION ".txt";

}  // namespace

void InstallTest::SetUp() {
  PutRuntime("Program Files (x86)/SteamVR");
  PutDriver("My drivers/ombrel");
  WriteRegistry(runtime);
  SetEnvironmentVariableW(L"LOCALAPPDATA", At("AppData").c_str());
}

void InstallTest::PutRuntime(const std::string& folder) {
  runtime = folder;
  fs::create_directories(At(folder + "/bin/win64"));
  fs::copy_file(FromEnvironment("OMBREL_TEST_VRPATHREG"), At(folder + "/bin/win64/vrpathreg.exe"));
}

void InstallTest::PutDriver(const std::string& folder) {
  driver = folder;
  for (const char* file : {"/driver.vrdrivermanifest", "/bin/win64/driver_ombrel.dll", kListOfFiles}) {
    Write(folder + file, "\n");
  }
  const fs::path shipped = FromEnvironment("OMBREL_TEST_DRIVER_FOLDER");
  for (const char* file : {"check.cmd", "install.cmd", "uninstall.cmd", "bin/win64/ombrel_doctor.exe"}) {
    fs::copy_file(shipped / file, At(folder) / file);
  }
}

void InstallTest::UnpackOver(const std::string& folder) {
  driver = folder;
  fs::create_directories(At(folder));
  fs::copy(FromEnvironment("OMBREL_TEST_DRIVER_FOLDER"), At(folder),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

std::vector<std::string> InstallTest::Files() const {
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(At(driver))) {
    if (entry.is_regular_file()) files.push_back(ToUtf8(entry.path().lexically_relative(At(driver))));
  }
  std::ranges::sort(files);
  return files;
}

void InstallTest::WriteRegistry(const std::string& runtimeFolder) const {
  const std::string named = nlohmann::json(TextOf(runtimeFolder)).dump();
  WriteRegistryText(
      "{\n\t\"config\" : \n\t[\n\t\t\"C:\\\\Steam\\\\config\"\n\t],\n"
      "\t\"external_drivers\" : \n\t[\n\t\t\"C:\\\\one\",\n\t\t\"C:\\\\runtime\\\\two\"\n\t],\n"
      "\t\"jsonid\" : \"vrpathreg\",\n\t\"log\" : \n\t[\n\t\t\"C:\\\\Steam\\\\logs\"\n\t],\n"
      "\t\"runtime\" : \n\t[\n\t\t" +
      named + "\n\t],\n\t\"version\" : 1\n}\n");
}

void InstallTest::WriteRegistryText(const std::string& bytes) const { Write(kRegistry, bytes); }

void InstallTest::LetVrpathregAnswer(int code) const {
  Write(runtime + "/bin/win64/vrpathreg.answer", std::to_string(code));
}

Outcome InstallTest::Run(const std::string& script, const std::string& arguments) const {
  return RunIn(At(""), "\"" + TextOf(driver + "/" + script) + "\"" + arguments);
}

Outcome InstallTest::RunIn(const fs::path& workingFolder, const std::string& command) const {
  return RunCommandLine("cmd.exe /d /c \"" + command + "\"", workingFolder);
}

std::vector<InstallTest::Call> InstallTest::Calls() const {
  std::vector<Call> calls;
  std::ifstream stream(At(runtime + "/bin/win64/vrpathreg.calls"), std::ios::binary);
  for (std::string line; std::getline(stream, line);) calls.push_back(nlohmann::json::parse(line).get<Call>());
  return calls;
}

nlohmann::json InstallTest::Registry() const { return nlohmann::json::parse(Read(kRegistry)); }

}  // namespace ombrel::test
