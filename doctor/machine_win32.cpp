#include "machine_win32.h"

#include <windows.h>

#include <array>

#include "console_win32.h"
#include "doctor/paths.h"
#include "platform/owned_handle.h"

namespace ombrel::doctor {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kLoadTimeoutMs = 20'000;
constexpr DWORD kLongestPath = 32'768;

// The runtime's entry in the list of installed programs.
constexpr const wchar_t* kUninstallKey = LR"(SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\Steam App 250820)";

std::wstring OwnProgram() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
  return path;
}

std::string LocalTime(const FILETIME& time) {
  SYSTEMTIME utc{}, local{};
  if (FileTimeToSystemTime(&time, &utc) == 0 || SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) == 0) return {};
  char text[32];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02u %02u:%02u", local.wYear, local.wMonth, local.wDay, local.wHour,
                local.wMinute);
  return text;
}

std::int64_t SecondsSince1970(const FILETIME& time) {
  const std::int64_t ticks = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
  return ticks / 10'000'000 - 11'644'473'600;
}

std::string ReadFrom(HANDLE file, FilePart part, std::size_t most) {
  LARGE_INTEGER size{};
  GetFileSizeEx(file, &size);
  const std::int64_t length = std::min(size.QuadPart, static_cast<LONGLONG>(most));
  LARGE_INTEGER start{};
  start.QuadPart = part == FilePart::kStart ? 0 : size.QuadPart - length;
  SetFilePointerEx(file, start, nullptr, FILE_BEGIN);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  DWORD read = 0;
  if (ReadFile(file, bytes.data(), static_cast<DWORD>(length), &read, nullptr) == 0) read = 0;
  bytes.resize(read);
  return bytes;
}

std::optional<std::string> InstallLocation(REGSAM view) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kUninstallKey, 0, KEY_QUERY_VALUE | view, &key) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::wstring folder(kLongestPath, L'\0');
  DWORD bytes = kLongestPath * sizeof(wchar_t);
  const LSTATUS status = RegGetValueW(key, nullptr, L"InstallLocation", RRF_RT_REG_SZ, nullptr, folder.data(), &bytes);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || bytes < 2 * sizeof(wchar_t)) return std::nullopt;
  return Utf8(std::wstring_view(folder.data(), bytes / sizeof(wchar_t) - 1));
}

// As a program's own start-up code takes it apart again: what ends in a backslash needs two before the quote.
std::wstring Quoted(const std::string& argument) {
  std::string quoted = "\"" + argument;
  for (std::size_t i = argument.size(); i > 0 && argument[i - 1] == '\\'; --i) quoted += '\\';
  return Wide(quoted + "\"");
}

// Runs to its end, or nothing when it does not start. One that does not end in time is ended.
std::optional<DWORD> RunToEnd(const std::wstring& program, std::wstring commandLine, DWORD flags, DWORD timeoutMs) {
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION information{};
  if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &startup,
                     &information) == 0) {
    return std::nullopt;
  }
  const OwnedHandle process(information.hProcess);
  const OwnedHandle thread(information.hThread);
  if (WaitForSingleObject(process.Get(), timeoutMs) != WAIT_OBJECT_0) {
    TerminateProcess(process.Get(), WAIT_TIMEOUT);
    return WAIT_TIMEOUT;
  }
  DWORD code = 0;
  GetExitCodeProcess(process.Get(), &code);
  return code;
}

}  // namespace

std::string WindowsMachine::DriverFolder() { return Parent(Parent(Parent(Utf8(OwnProgram())))); }

std::optional<std::string> WindowsMachine::Environment(const char* name) {
  std::wstring value(kLongestPath, L'\0');
  value.resize(GetEnvironmentVariableW(Wide(name).c_str(), value.data(), kLongestPath));
  return value.empty() ? std::nullopt : std::optional(Utf8(value));
}

FileBytes WindowsMachine::Read(const std::string& path, FilePart part, std::size_t most) {
  if (Kind(path) != PathKind::kFile) return {};
  const OwnedHandle file(
      CreateFileW(Wide(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return {ReadState::kUnreadable, {}};
  return {ReadState::kRead, ReadFrom(file.Get(), part, most)};
}

PathKind WindowsMachine::Kind(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return PathKind::kMissing;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::kFolder : PathKind::kFile;
}

std::vector<FolderEntry> WindowsMachine::List(const std::string& folder) {
  std::vector<FolderEntry> entries;
  WIN32_FIND_DATAW found{};
  HANDLE search = FindFirstFileW(Wide(Join(folder, "*")).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return entries;
  do {
    const std::wstring_view name = found.cFileName;
    if (name == L"." || name == L"..") continue;
    entries.push_back({Utf8(name), (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                       SecondsSince1970(found.ftLastWriteTime), LocalTime(found.ftLastWriteTime)});
  } while (FindNextFileW(search, &found) != 0);
  FindClose(search);
  return entries;
}

bool WindowsMachine::IsOnNetwork(const std::string& path) {
  if (path.starts_with("\\\\")) return true;
  return GetDriveTypeW(Wide(path.substr(0, 2) + "\\").c_str()) == DRIVE_REMOTE;
}

std::optional<std::string> WindowsMachine::UninstallFolder() {
  const auto folder = InstallLocation(KEY_WOW64_64KEY);
  return folder ? folder : InstallLocation(KEY_WOW64_32KEY);
}

// The names alone: no pipe is opened, and none is asked for a free instance.
std::optional<std::vector<std::string>> WindowsMachine::PipeNames() {
  WIN32_FIND_DATAW found{};
  HANDLE search = FindFirstFileW(LR"(\\.\pipe\*)", &found);
  if (search == INVALID_HANDLE_VALUE) return std::nullopt;
  std::vector<std::string> names;
  do {
    names.push_back(Utf8(found.cFileName));
  } while (FindNextFileW(search, &found) != 0);
  FindClose(search);
  return names;
}

LoadAttempt WindowsMachine::TryLoad(const std::string& library) {
  const std::wstring program = OwnProgram();
  const std::wstring commandLine = L"\"" + program + L"\" --probe-load " + Quoted(library);
  const auto code = RunToEnd(program, commandLine, CREATE_NO_WINDOW, kLoadTimeoutMs);
  if (!code) return {GetLastError(), false};
  // The codes of exceptions have the two highest bits set.
  return {*code, *code >= 0xC0000000};
}

std::optional<int> WindowsMachine::Run(const std::string& program, const std::vector<std::string>& arguments) {
  std::wstring commandLine = Quoted(program);
  for (const std::string& argument : arguments) commandLine += L" " + Quoted(argument);
  const auto code = RunToEnd(Wide(program), commandLine, 0, INFINITE);
  return code ? std::optional(static_cast<int>(*code)) : std::nullopt;
}

bool WindowsMachine::Delete(const std::string& file) { return DeleteFileW(Wide(file).c_str()) != 0; }

// Windows lets nobody write to a library that is loaded.
bool WindowsMachine::IsInUse(const std::string& file) {
  const OwnedHandle opened(
      CreateFileW(Wide(file).c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return !opened && GetLastError() == ERROR_SHARING_VIOLATION;
}

int ProbeLoad(const std::string& library) {
  // A crash, or a library that is missing, is to end this process and to show nothing.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  HMODULE loaded = LoadLibraryExW(Wide(library).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (loaded == nullptr) return static_cast<int>(GetLastError());
  const bool hasFactory = GetProcAddress(loaded, "HmdDriverFactory") != nullptr;
  // Not unloaded: only loading is in question.
  TerminateProcess(GetCurrentProcess(), hasFactory ? 0 : ERROR_PROC_NOT_FOUND);
  return 0;
}

}  // namespace ombrel::doctor
