// Stands in for the runtime's vrpathreg.exe: keeps the list of drivers in the path registry as that does, and notes its
// arguments, one JSON list a line, in the file vrpathreg.calls beside itself. A file vrpathreg.answer beside it holds
// the exit code with which it then ends at once, and changes nothing.
#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::string Utf8(const wchar_t* text) {
  const std::u8string bytes = fs::path(text).u8string();
  return {bytes.begin(), bytes.end()};
}

std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(words[i]));
  LocalFree(words);
  return arguments;
}

fs::path FolderOfThisProgram() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return fs::path(path).parent_path();
}

fs::path Registry() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetEnvironmentVariableW(L"LOCALAPPDATA", folder.data(), MAX_PATH));
  return fs::path(folder) / "openvr" / "openvrpaths.vrpath";
}

json Changed(const json& list, const std::string& verb, const std::string& driver) {
  std::vector<std::string> drivers =
      list.is_array() ? list.get<std::vector<std::string>>() : std::vector<std::string>();
  std::erase(drivers, driver);
  if (verb == "adddriver") drivers.push_back(driver);
  return drivers.empty() ? json() : json(drivers);
}

}  // namespace

int main() {
  const std::vector<std::string> arguments = Arguments();
  const fs::path folder = FolderOfThisProgram();
  std::ofstream(folder / "vrpathreg.calls", std::ios::app | std::ios::binary) << json(arguments).dump() << '\n';
  int code = 0;
  if (std::ifstream answer(folder / "vrpathreg.answer"); answer >> code) return code;
  if (arguments.size() != 2 || (arguments[0] != "adddriver" && arguments[0] != "removedriver")) return 64;

  json registry = json::parse(std::ifstream(Registry(), std::ios::binary));
  registry["external_drivers"] = Changed(registry["external_drivers"], arguments[0], arguments[1]);
  std::ofstream(Registry(), std::ios::binary) << registry.dump(3) << '\n';
  return 0;
}
