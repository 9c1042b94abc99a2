#include "made_up_computer.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ombrel::doctor::test {
namespace {

namespace fs = std::filesystem;

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

HANDLE OpenInheritable(const wchar_t* path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, disposition, 0, nullptr);
}

// The process's handle is the caller's.
HANDLE Start(std::wstring commandLine, STARTUPINFOW startup) {
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                     &process) == 0) {
    throw std::runtime_error("a program does not start");
  }
  CloseHandle(process.hThread);
  return process.hProcess;
}

void End(HANDLE process) {
  TerminateProcess(process, 0);
  WaitForSingleObject(process, kTimeoutMs);
  CloseHandle(process);
}

// A file can be removed a moment after the process that used it has ended, not at once.
void RemoveAll(const fs::path& path) {
  std::error_code error;
  for (int tries = 0; tries < 100; ++tries) {
    fs::remove_all(path, error);
    if (!error) return;
    Sleep(20);
  }
}

}  // namespace

void MadeUpComputer::SetUp() {
  static std::atomic<int> count = 0;
  const std::string name = "doctor_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
  root_ = fs::weakly_canonical(fs::temp_directory_path()) / name;
  RemoveAll(root_);
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

void MadeUpComputer::TearDown() {
  ForgetInstalledRuntime();
  StartCompanion("");
  RemoveAll(root_);
  RemoveAll(OutputFile());
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

void MadeUpComputer::Write(const std::string& file, const std::string& bytes) const {
  fs::create_directories(At(file).parent_path());
  std::ofstream(At(file), std::ios::binary) << bytes;
}

std::string MadeUpComputer::Read(const std::string& file) const { return ReadAll(At(file)); }

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
  if (companion_ != nullptr) End(companion_);
  companion_ = nullptr;
  if (name.empty()) return;
  // In a folder of its own: two names that differ in case alone are one file.
  const fs::path program = At("companion " + std::to_string(++companions_)) / name;
  fs::create_directories(program.parent_path());
  fs::copy_file(FromEnvironment("OMBREL_TEST_COMPANION"), program, fs::copy_options::overwrite_existing);
  companion_ = Start(L"\"" + program.native() + L"\"", {});
}

MadeUpComputer::Outcome MadeUpComputer::RunDoctor(const std::string& arguments) const {
  const fs::path output = OutputFile();
  STARTUPINFOW startup{};
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = OpenInheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
  startup.hStdOutput = OpenInheritable(output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
  startup.hStdError = startup.hStdOutput;
  const std::string program = TextOf(driver + "/bin/win64/ombrel_doctor.exe");
  HANDLE process = Start(FromUtf8("\"" + program + "\" --no-pause " + arguments).native(), startup);
  CloseHandle(startup.hStdInput);
  CloseHandle(startup.hStdOutput);
  DWORD code = 0;
  const bool ended = WaitForSingleObject(process, kTimeoutMs) == WAIT_OBJECT_0;
  GetExitCodeProcess(process, &code);
  End(process);
  if (!ended) throw std::runtime_error("the doctor does not end");
  return {static_cast<int>(code), ReadAll(output)};
}

std::vector<std::string> MadeUpComputer::Found() const {
  const Outcome outcome = RunDoctor("--json --language en");
  const auto report = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(outcome.exitCode, report["result"] == "well" ? 0 : 1);
  std::vector<std::string> ids;
  for (const auto& finding : report["findings"]) ids.push_back(finding["id"]);
  return ids;
}

fs::path MadeUpComputer::At(const std::string& path) const { return (root_ / FromUtf8(path)).make_preferred(); }

std::string MadeUpComputer::TextOf(const std::string& path) const { return ToUtf8(At(path)); }

std::map<std::string, std::string> MadeUpComputer::Files() const {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root_)) {
    if (entry.is_regular_file()) files[ToUtf8(entry.path())] = ReadAll(entry.path());
  }
  return files;
}

}  // namespace ombrel::doctor::test
