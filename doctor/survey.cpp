#include "doctor/survey.h"

#include <algorithm>

#include "companion_process.h"
#include "doctor/paths.h"
#include "doctor/server_log.h"
#include "link/wire.h"

namespace ombrel::doctor {
namespace {

constexpr std::size_t kMostOfLibrary = 4096;
constexpr std::size_t kMostOfLog = 8U << 20U;
constexpr std::size_t kMostOfDump = 16U << 20U;
constexpr std::size_t kMostDumps = 12;

// What the runtime reads of any version of the driver.
constexpr const char* kEssential[] = {kLibrary,
                                      kManifest,
                                      "resources\\driver.vrresources",
                                      "resources\\settings\\default.vrsettings",
                                      "resources\\input\\controller_profile.json",
                                      "resources\\input\\remapping.json",
                                      "resources\\input\\bindings_menus.json",
                                      "resources\\input\\bindings_legacy.json",
                                      "resources\\localization\\localization.json"};

bool IsFile(Machine& machine, const std::string& path) { return machine.Kind(path) == PathKind::kFile; }

// Whether the runtime reads it; texts and scripts are for people.
bool IsOfDriver(const std::string& file) {
  const std::string lower = LowerAscii(file);
  return lower == kManifest || lower == kLibrary || (lower.starts_with("resources\\") && !lower.ends_with(".txt"));
}

std::vector<std::string> ExpectedFiles(Machine& machine, const std::string& folder) {
  std::vector<std::string> files(std::begin(kEssential), std::end(kEssential));
  for (const std::string& file : ReadListOfFiles(machine, Join(folder, ListOfFiles()))) {
    const auto isKnown = [&](const std::string& each) { return EqualIgnoringCase(each, file); };
    if (IsOfDriver(file) && std::none_of(files.begin(), files.end(), isKnown)) files.push_back(file);
  }
  return files;
}

bool IsJson(const std::string& file) { return file.ends_with(".json") || file.ends_with(".vrresources"); }

DriverFolder LookAtDriver(Machine& machine) {
  DriverFolder driver;
  driver.path = machine.DriverFolder();
  driver.isOnNetwork = machine.IsOnNetwork(driver.path);
  driver.manifest = ReadJson(machine, Join(driver.path, kManifest));
  driver.defaults = ReadJson(machine, Join(driver.path, "resources\\settings\\default.vrsettings"));
  for (const std::string& file : ExpectedFiles(machine, driver.path)) {
    const std::string path = Join(driver.path, file);
    if (!IsFile(machine, path)) {
      driver.missing.push_back(file);
    } else if (IsJson(file)) {
      driver.others.push_back(ReadJson(machine, path));
    }
  }
  const std::string library = Join(driver.path, kLibrary);
  driver.hasLibrary = IsFile(machine, library);
  if (!driver.hasLibrary) return driver;
  driver.processor = ProcessorOf(machine.Read(library, FilePart::kStart, kMostOfLibrary).bytes);
  if (driver.processor == kMachineX64) driver.load = machine.TryLoad(library);
  return driver;
}

std::string DriverNameOf(const JsonFile& manifest) {
  const auto name = manifest.value.is_object() ? manifest.value.find("name") : manifest.value.end();
  return name != manifest.value.end() && name->is_string() ? name->get<std::string>() : std::string();
}

bool HoldsUs(Machine& machine, const std::string& folder) {
  const JsonFile manifest = ReadJson(machine, Join(folder, kManifest));
  if (manifest.state == ReadState::kMissing) return false;
  // A damaged manifest is ours if the library is.
  return manifest.IsUnderstood() ? DriverNameOf(manifest) == "ombrel" : IsFile(machine, Join(folder, kLibrary));
}

ListedFolder LookAtListed(Machine& machine, const std::string& path) {
  ListedFolder listed;
  listed.path = path;
  listed.isThere = machine.Kind(path) == PathKind::kFolder;
  const JsonFile manifest = ReadJson(machine, Join(path, kManifest));
  listed.isOurs = HoldsUs(machine, path) || (!listed.isThere && EqualIgnoringCase(Leaf(path), "ombrel"));
  listed.holdsInnerCopy = manifest.state == ReadState::kMissing && HoldsUs(machine, Join(path, "ombrel"));
  if (!manifest.value.is_object()) return listed;
  const auto always = manifest.value.find("alwaysActivate");
  listed.isAlwaysActive = always != manifest.value.end() && Switch(*always).value_or(false);
  return listed;
}

// The first folder of a list in the path registry that exists.
std::string FirstFolder(Machine& machine, Runtime& runtime, const char* key) {
  const auto folders = Texts(runtime.pathRegistry.value, key);
  if (!folders) runtime.wrongKeys.emplace_back(key);
  for (const std::string& folder : folders.value_or(std::vector<std::string>())) {
    if (machine.Kind(folder) == PathKind::kFolder) return Native(folder);
  }
  return {};
}

void LookAtLists(Machine& machine, Runtime& runtime) {
  const auto folders = Texts(runtime.pathRegistry.value, "runtime");
  for (const std::string& folder : folders.value_or(std::vector<std::string>())) {
    if (!folder.empty()) runtime.folders.push_back(Native(folder));
  }
  runtime.folder = FirstFolder(machine, runtime, "runtime");
  for (const char* program : {"vrpathreg.exe", "vrserver.exe"}) {
    if (!runtime.folder.empty() && !IsFile(machine, Join(Join(runtime.folder, "bin\\win64"), program))) {
      runtime.missingProgram = program;
    }
  }
  const auto drivers = Texts(runtime.pathRegistry.value, "external_drivers");
  if (!drivers) runtime.wrongKeys.emplace_back("external_drivers");
  for (const std::string& folder : drivers.value_or(std::vector<std::string>())) {
    runtime.drivers.push_back(LookAtListed(machine, folder));
  }
}

ServerLog LookAtLog(Machine& machine, const std::string& folder) {
  ServerLog log;
  log.path = Join(folder, "vrserver.txt");
  const FileBytes read = machine.Read(log.path, FilePart::kEnd, kMostOfLog);
  log.state = read.state;
  log.lines = NewestSession(read.bytes);
  for (const FolderEntry& entry : machine.List(folder)) {
    if (EqualIgnoringCase(entry.name, "vrserver.txt")) log.written = entry.written;
  }
  return log;
}

struct DumpFile {
  std::string path;
  FolderEntry entry;
};

std::vector<DumpFile> ListDumps(Machine& machine, const std::vector<std::string>& folders) {
  std::vector<DumpFile> dumps;
  for (const std::string& folder : folders) {
    for (const FolderEntry& entry : machine.List(folder)) {
      const std::string name = LowerAscii(entry.name);
      if (!entry.isFolder && (name.ends_with(".dmp") || name.ends_with(".mdmp"))) {
        dumps.push_back({Join(folder, entry.name), entry});
      }
    }
  }
  std::stable_sort(dumps.begin(), dumps.end(),
                   [](const DumpFile& a, const DumpFile& b) { return a.entry.writtenAt > b.entry.writtenAt; });
  dumps.resize(std::min(dumps.size(), kMostDumps));
  return dumps;
}

void LookAtDumps(Machine& machine, const std::string& logFolder, Survey& survey) {
  std::vector<std::string> folders;
  if (!logFolder.empty()) folders = {logFolder, Join(Parent(logFolder), "dumps")};
  if (const auto local = machine.Environment("LOCALAPPDATA")) folders.push_back(Join(*local, "CrashDumps"));
  for (const DumpFile& dump : ListDumps(machine, folders)) {
    survey.crashDumps.push_back(dump.entry.written + "  " + dump.path);
    if (survey.crash) continue;
    const auto site = FindCrash(machine.Read(dump.path, FilePart::kStart, kMostOfDump).bytes, Leaf(kLibrary));
    if (site) survey.crash = CrashDump{dump.path, dump.entry.written, *site};
  }
}

bool IsSpelledOtherwise(const std::string& name) {
  const std::string lower = LowerAscii(name);
  return lower.starts_with("ombrel") && lower.ends_with(".exe") && lower != "ombrel_doctor.exe" && name != "Ombrel.exe";
}

bool IsOfRuntime(const std::string& name) {
  return EqualIgnoringCase(name, "vrserver.exe") || EqualIgnoringCase(name, "vrmonitor.exe");
}

void LookAtProcesses(Machine& machine, Survey& survey) {
  const std::vector<ProcessEntry> processes = machine.Processes();
  survey.companion.isRunning = IsCompanionRunning(processes);
  Rights companion = Rights::kSame;
  Rights runtime = Rights::kSame;
  for (const ProcessEntry& process : processes) {
    if (IsSpelledOtherwise(process.executableName)) survey.companion.otherSpelling = process.executableName;
    if (process.executableName == "Ombrel.exe") companion = machine.RightsOf(process.id);
    if (!IsOfRuntime(process.executableName)) continue;
    survey.runtime.isRunning = true;
    runtime = machine.RightsOf(process.id);
  }
  // Without a runtime to compare with, one that would be started as this program was; but nobody starts one as
  // administrator only because the doctor was.
  const bool isComparable = survey.runtime.isRunning || !survey.account.isElevated;
  survey.companion.hasOtherRights = isComparable && companion != runtime;
}

// Only their names are asked for: whoever opens one takes the companion's single instance away from the driver.
std::optional<std::vector<std::string>> LookAtPipes(Machine& machine) {
  const auto names = machine.PipeNames();
  if (!names) return std::nullopt;
  std::vector<std::string> ours;
  for (const char* pipe : {kPipeToCompanion, kPipeFromCompanion}) {
    const std::string name = Leaf(pipe);
    const auto isOurs = [&](const std::string& each) { return EqualIgnoringCase(each, name); };
    if (std::any_of(names->begin(), names->end(), isOurs)) ours.push_back(name);
  }
  return ours;
}

}  // namespace

std::string PathRegistryFile(const std::string& localApplicationData) {
  return Join(localApplicationData, "openvr\\openvrpaths.vrpath");
}

std::string ListOfFiles() { return "resources\\files-" OMBREL_VERSION ".txt"; }

std::vector<std::string> ReadListOfFiles(Machine& machine, const std::string& file) {
  std::vector<std::string> files = Lines(machine.Read(file, FilePart::kStart, kMostOfLog).bytes);
  std::erase(files, "");
  return files;
}

Runtime LookAtRuntime(Machine& machine) {
  Runtime runtime;
  runtime.pathRegistry = ReadJson(machine, PathRegistryFile(machine.Environment("LOCALAPPDATA").value_or("")));
  runtime.installed = machine.UninstallFolder();
  LookAtLists(machine, runtime);
  return runtime;
}

Survey Look(Machine& machine) {
  Survey survey;
  survey.driver = LookAtDriver(machine);
  const std::string outer = Parent(survey.driver.path);
  if (HoldsUs(machine, outer)) survey.outerCopy = outer;
  survey.runtime = LookAtRuntime(machine);
  const std::string config = FirstFolder(machine, survey.runtime, "config");
  if (!config.empty()) survey.runtime.settings = ReadJson(machine, Join(config, "steamvr.vrsettings"));
  const std::string logs = FirstFolder(machine, survey.runtime, "log");
  if (!logs.empty()) {
    survey.log = LookAtLog(machine, logs);
    survey.previousLog = machine.Read(Join(logs, "vrserver.previous.txt"), FilePart::kEnd, kMostOfLog).bytes;
  }
  LookAtDumps(machine, logs, survey);
  survey.account = machine.WhoAmI();
  LookAtProcesses(machine, survey);
  survey.companion.pipes = LookAtPipes(machine);
  survey.adapters = machine.Adapters();
  return survey;
}

}  // namespace ombrel::doctor
