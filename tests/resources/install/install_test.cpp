#include "install_test.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRegistry = "AppData/openvr/openvrpaths.vrpath";
constexpr const char* kListOfFiles = "/resources/files-" OMBREL_TEST_VERSION ".txt";
constexpr DWORD kTimeoutMs = 60'000;

fs::path FromUtf8(const std::string& text) { return fs::path(std::u8string(text.begin(), text.end())); }

std::string ToUtf8(const fs::path& path) {
  const std::u8string bytes = path.u8string();
  return {bytes.begin(), bytes.end()};
}

fs::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

std::string ReadAll(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void Touch(const fs::path& file) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << "\n";
}

HANDLE OpenInheritable(const wchar_t* path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, disposition, 0, nullptr);
}

int WaitForExitCode(const PROCESS_INFORMATION& process) {
  DWORD code = 0;
  const bool ended = WaitForSingleObject(process.hProcess, kTimeoutMs) == WAIT_OBJECT_0;
  if (ended) {
    GetExitCodeProcess(process.hProcess, &code);
  } else {
    TerminateProcess(process.hProcess, 1);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  if (!ended) throw std::runtime_error("the script does not end");
  return static_cast<int>(code);
}

// A program's file can be removed a moment after its process has ended, not at once.
void RemoveAll(const fs::path& folder) {
  std::error_code error;
  for (int tries = 0; tries < 100; ++tries) {
    fs::remove_all(folder, error);
    if (!error) return;
    Sleep(20);
  }
}

}  // namespace

void InstallTest::SetUp() {
  static std::atomic<int> count = 0;
  const std::string name = "ombrel_install_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
  root_ = fs::weakly_canonical(fs::temp_directory_path()) / name;
  RemoveAll(root_);
  fs::create_directories(At("AppData/openvr"));
  PutRuntime("Program Files (x86)/SteamVR");
  PutDriver("My drivers/ombrel");
  WriteRegistry(runtime);
  SetEnvironmentVariableW(L"LOCALAPPDATA", At("AppData").c_str());
}

void InstallTest::TearDown() { RemoveAll(root_); }

void InstallTest::PutRuntime(const std::string& folder) {
  runtime = folder;
  fs::create_directories(At(folder + "/bin/win64"));
  fs::copy_file(FromEnvironment("OMBREL_TEST_VRPATHREG"), At(folder + "/bin/win64/vrpathreg.exe"));
}

void InstallTest::PutDriver(const std::string& folder) {
  driver = folder;
  Touch(At(folder + "/driver.vrdrivermanifest"));
  Touch(At(folder + "/bin/win64/driver_ombrel.dll"));
  const fs::path shipped = FromEnvironment("OMBREL_TEST_DRIVER_FOLDER");
  for (const char* file : {"check.cmd", "install.cmd", "uninstall.cmd", "bin/win64/ombrel_doctor.exe"}) {
    fs::copy_file(shipped / file, At(folder) / file);
  }
  Touch(At(folder + kListOfFiles));
}

void InstallTest::UnpackOver(const std::string& folder) {
  driver = folder;
  fs::create_directories(At(folder));
  fs::copy(FromEnvironment("OMBREL_TEST_DRIVER_FOLDER"), At(folder),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

void InstallTest::Write(const std::string& file, const std::string& bytes) const {
  fs::create_directories(At(file).parent_path());
  std::ofstream(At(file), std::ios::binary) << bytes;
}

std::string InstallTest::Read(const std::string& file) const { return ReadAll(At(file)); }

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

void InstallTest::WriteRegistryText(const std::string& bytes) const {
  std::ofstream(At(kRegistry), std::ios::binary) << bytes;
}

void InstallTest::LetVrpathregAnswer(int code) const {
  std::ofstream(At(runtime + "/bin/win64/vrpathreg.answer")) << code;
}

InstallTest::Outcome InstallTest::Run(const std::string& script, const std::string& arguments) const {
  return RunIn(root_, "\"" + TextOf(driver + "/" + script) + "\"" + arguments);
}

// The console without a window gives the script a code page to change; nothing comes from standard input.
InstallTest::Outcome InstallTest::RunIn(const fs::path& workingFolder, const std::string& command) const {
  const fs::path output = At("output.txt");
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = OpenInheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
  startup.hStdOutput = OpenInheritable(output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
  startup.hStdError = startup.hStdOutput;
  PROCESS_INFORMATION process{};
  std::wstring line = FromUtf8("cmd.exe /d /c \"" + command + "\"").native();
  const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                      workingFolder.c_str(), &startup, &process);
  CloseHandle(startup.hStdInput);
  CloseHandle(startup.hStdOutput);
  if (started == 0) throw std::runtime_error("cannot start cmd.exe");
  const int exitCode = WaitForExitCode(process);
  return {exitCode, ReadAll(output)};
}

fs::path InstallTest::At(const std::string& path) const { return (root_ / FromUtf8(path)).make_preferred(); }

std::string InstallTest::TextOf(const std::string& path) const { return ToUtf8(At(path)); }

std::vector<InstallTest::Call> InstallTest::Calls() const {
  std::vector<Call> calls;
  std::ifstream stream(At(runtime + "/bin/win64/vrpathreg.calls"), std::ios::binary);
  for (std::string line; std::getline(stream, line);) calls.push_back(nlohmann::json::parse(line).get<Call>());
  return calls;
}

nlohmann::json InstallTest::Registry() const {
  return nlohmann::json::parse(std::ifstream(At(kRegistry), std::ios::binary));
}

}  // namespace ombrel::test
