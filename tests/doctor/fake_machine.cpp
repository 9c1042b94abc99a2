#include "fake_machine.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "doctor/paths.h"

namespace ombrel::doctor::test {
namespace {

using nlohmann::json;

template <typename Number>
void Append(std::string& bytes, Number number) {
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    bytes += static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i) & 0xFFU);
  }
}

void AppendModule(std::string& bytes, std::uint64_t start, std::uint32_t nameAt) {
  const std::size_t end = bytes.size() + 108;
  Append<std::uint64_t>(bytes, start);
  Append<std::uint32_t>(bytes, 0x1000);
  Append<std::uint64_t>(bytes, 0);
  Append<std::uint32_t>(bytes, nameAt);
  bytes.resize(end);
}

std::string DumpText(const std::string& text) {
  std::string bytes;
  Append(bytes, static_cast<std::uint32_t>(2 * text.size()));
  for (const char c : text) Append<std::uint16_t>(bytes, static_cast<unsigned char>(c));
  return bytes + std::string(2, '\0');
}

}  // namespace

FakeMachine::FakeMachine() {
  driver = R"(C:\VR\ombrel)";
  environment["LOCALAPPDATA"] = R"(C:\Users\Joerg\AppData\Local)";
  installed = kRuntime;
  processes = {{0, "[System Process]"}, {4, "System"}, {100, "Ombrel.exe"}, {200, "explorer.exe"}};
  pipes = {{"InitShutdown", "PellmorOmbrelTransmissionPipeV1In", "PellmorOmbrelTransmissionPipeV1Out"}};
  adapters = {{"Some GPU", "0:1", false, false}, {"Basic Render Driver", "0:2", true, false}};
  account = {"Joerg", "Joerg", false, {"Joerg"}, {"GAMINGPC"}};
  Put(std::string(kRuntime) + R"(\bin\win64\vrpathreg.exe)", "");
  Put(std::string(kRuntime) + R"(\bin\win64\vrserver.exe)", "");
  PutDriver(driver);
  WriteRegistry({kRuntime}, {driver});
  WriteSettings(R"("steamvr" : { "requireHmd" : true })");
  WriteLog({"Ombrel process is running", "HMD activated with id 0 "});
}

void FakeMachine::Put(const std::string& path, const std::string& bytes) { files_[path] = bytes; }

void FakeMachine::PutDriver(const std::string& folder) {
  Put(Join(folder, "driver.vrdrivermanifest"), R"({ "name" : "ombrel", "alwaysActivate" : false })");
  Put(Join(folder, R"(bin\win64\driver_ombrel.dll)"), LibraryFor(0x8664));
  Put(Join(folder, R"(resources\files-)" OMBREL_VERSION ".txt"),
      "bin\\win64\\driver_ombrel.dll\r\nresources\\icons\\ready.png\r\ninstall.cmd\r\n");
  Put(Join(folder, R"(resources\icons\ready.png)"), "");
  Put(Join(folder, R"(resources\settings\default.vrsettings)"),
      R"({ "driver_ombrel" : { "hmdMode" : 0, "windowWidth" : 2560, "windowHeight" : 1440, "renderScale" : 100 } })");
  for (const char* file :
       {"driver.vrresources", "input\\controller_profile.json", "input\\remapping.json", "input\\bindings_menus.json",
        "input\\bindings_legacy.json", "localization\\localization.json"}) {
    Put(Join(Join(folder, "resources"), file), "{}");
  }
}

void FakeMachine::WriteRegistry(const std::vector<std::string>& runtimes, const std::vector<std::string>& drivers) {
  const json registry = {{"config", {R"(C:\Steam\config)"}},
                         {"external_drivers", drivers.empty() ? json() : json(drivers)},
                         {"log", {R"(C:\Steam\logs)"}},
                         {"runtime", runtimes},
                         {"version", 1}};
  Put(kRegistry, "\xEF\xBB\xBF" + registry.dump(3));
}

void FakeMachine::WriteSettings(const std::string& sections) {
  Put(R"(C:\Steam\config\steamvr.vrsettings)", "{ // by hand\n" + sections + " }\n");
}

void FakeMachine::WriteLog(const std::vector<std::string>& lines) {
  std::string log = "Sun Nov 22 2026 10:00:00.000 [Info] - startup with PID=1234\r\n";
  for (const std::string& line : lines) log += "Sun Nov 22 2026 10:00:01.000 [Info] - " + line + "\r\n";
  Put(R"(C:\Steam\logs\vrserver.txt)", log);
}

void FakeMachine::MoveDriver(const std::string& folder) {
  std::erase_if(files_, [&](const auto& file) { return file.first.starts_with(driver + "\\"); });
  driver = folder;
  PutDriver(folder);
  WriteRegistry({kRuntime}, {folder});
}

std::optional<std::string> FakeMachine::Environment(const char* name) {
  const auto found = environment.find(name);
  return found == environment.end() ? std::nullopt : std::optional(found->second);
}

FileBytes FakeMachine::Read(const std::string& path, FilePart part, std::size_t most) {
  if (path == unreadable) return {ReadState::kUnreadable, {}};
  const auto found = files_.find(Native(path));
  if (found == files_.end()) return {};
  const std::string& bytes = found->second;
  const std::size_t length = std::min(most, bytes.size());
  return {ReadState::kRead, part == FilePart::kStart ? bytes.substr(0, length) : bytes.substr(bytes.size() - length)};
}

PathKind FakeMachine::Kind(const std::string& path) {
  if (files_.contains(Native(path))) return PathKind::kFile;
  return List(path).empty() ? PathKind::kMissing : PathKind::kFolder;
}

std::vector<FolderEntry> FakeMachine::List(const std::string& folder) {
  std::vector<FolderEntry> entries;
  const std::string start = Native(folder) + "\\";
  for (const auto& [path, bytes] : files_) {
    if (!path.starts_with(start)) continue;
    const std::string rest = path.substr(start.size());
    const bool isFolder = Contains(rest, "\\");
    // What is longer was written later.
    entries.push_back(
        {rest.substr(0, rest.find('\\')), isFolder, static_cast<std::int64_t>(bytes.size()), "2026-11-22 10:00"});
  }
  return entries;
}

std::optional<int> FakeMachine::Run(const std::string& program, const std::vector<std::string>& arguments) {
  std::string call = Leaf(program);
  for (const std::string& argument : arguments) call += " " + argument;
  calls.push_back(call);
  if (exitCode != 0) return exitCode;
  json registry = json::parse(files_[kRegistry]);
  auto& list = registry["external_drivers"];
  std::vector<std::string> drivers =
      list.is_array() ? list.get<std::vector<std::string>>() : std::vector<std::string>();
  std::erase(drivers, arguments[1]);
  if (arguments[0] == "adddriver") drivers.push_back(arguments[1]);
  list = drivers;
  Put(kRegistry, registry.dump());
  return 0;
}

bool FakeMachine::Delete(const std::string& file) { return files_.erase(file) == 1; }

std::vector<Finding> Examined(FakeMachine& machine) { return Examine(Look(machine)); }

std::vector<std::string> Ids(FakeMachine& machine) {
  std::vector<std::string> ids;
  for (const Finding& finding : Examined(machine)) ids.emplace_back(finding.id);
  return ids;
}

std::string LibraryFor(std::uint16_t processor) {
  std::string bytes = "MZ";
  bytes.resize(0x3C);
  Append<std::uint32_t>(bytes, 0x40);
  bytes += std::string("PE\0\0", 4);
  Append<std::uint16_t>(bytes, processor);
  return bytes;
}

// Header, directory of two streams, exception, list of two modules, their names.
std::string DumpWith(const std::string& module, std::uint64_t exceptionAddress) {
  constexpr std::uint32_t kException = 32 + 24;
  constexpr std::uint32_t kModules = kException + 32;
  constexpr std::uint32_t kNames = kModules + 4 + 2 * 108;
  const std::string firstName = DumpText(R"(C:\SteamVR\bin\win64\vrserver.exe)");
  std::string bytes = "MDMP";
  Append<std::uint32_t>(bytes, 0);
  Append<std::uint32_t>(bytes, 2);
  Append<std::uint32_t>(bytes, 32);
  bytes.resize(32);
  for (const auto& [type, at] : {std::pair{6U, kException}, std::pair{4U, kModules}}) {
    Append<std::uint32_t>(bytes, type);
    Append<std::uint32_t>(bytes, 0);
    Append<std::uint32_t>(bytes, at);
  }
  bytes.resize(kException + 24);
  Append<std::uint64_t>(bytes, exceptionAddress);
  Append<std::uint32_t>(bytes, 2);
  AppendModule(bytes, 0x10000, kNames);
  AppendModule(bytes, 0x20000, kNames + static_cast<std::uint32_t>(firstName.size()));
  return bytes + firstName + DumpText("C:\\VR\\ombrel\\bin\\win64\\" + module);
}

}  // namespace ombrel::doctor::test
