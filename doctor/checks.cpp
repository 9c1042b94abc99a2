#include "doctor/checks.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "doctor/paths.h"
#include "doctor/server_log.h"
#include "hmd/display_geometry.h"

namespace ombrel::doctor {
namespace {

using nlohmann::json;

constexpr const char* kSection = "driver_ombrel";

// Windows' errors of loading a library, as numbers, since these checks are made on any system.
constexpr std::uint32_t kModuleNotFound = 126;
constexpr std::uint32_t kProcedureNotFound = 127;
constexpr std::uint32_t kBadImage = 193;
// Access denied, virus infected, virus deleted, and two kinds of policy.
constexpr std::uint32_t kBlocked[] = {5, 225, 226, 1260, 4551};

class Examination {
 public:
  explicit Examination(const Survey& survey) : survey_(survey), runtime_(survey.runtime), driver_(survey.driver) {}

  std::vector<Finding> Run() {
    CheckBlocked();
    CheckCompanion();
    CheckRegistration();
    CheckOtherDrivers();
    CheckLog();
    CheckPlace();
    CheckFiles();
    CheckLibrary();
    CheckSettings();
    CheckAccount();
    CheckRuntime();
    CheckAdapters();
    CheckPipes();
    CheckCrash();
    CheckUnderstanding();
    DropConsequences();
    Sort();
    return std::move(findings_);
  }

 private:
  void Add(std::string_view id, std::vector<std::string> values = {}) { findings_.push_back({id, std::move(values)}); }
  [[nodiscard]] bool Has(std::string_view id) const {
    return std::any_of(findings_.begin(), findings_.end(), [&](const Finding& each) { return each.id == id; });
  }

  void CheckBlocked();
  void CheckCompanion();
  void CheckRegistration();
  void CheckCopies();
  void CheckOtherDrivers();
  void CheckLog();
  void CheckPlace();
  void CheckFiles();
  void CheckLibrary();
  void CheckSettings();
  void CheckSize();
  void CheckAccount();
  void CheckRuntime();
  void CheckAdapters();
  void CheckPipes();
  void CheckCrash();
  void CheckUnderstanding();
  void DropConsequences();
  void Sort();

  // A whole number that the driver reads: the user's, else the shipped one; 0 when neither is one.
  std::int32_t Number(const char* key);

  const Survey& survey_;
  const Runtime& runtime_;
  const DriverFolder& driver_;
  std::vector<Finding> findings_;
};

void Examination::CheckBlocked() {
  if (Switch(runtime_.settings.At(kSection, "blocked_by_safe_mode")).value_or(false)) Add("blocked_by_safe_mode");
  if (!Switch(runtime_.settings.At(kSection, "enable")).value_or(true)) Add("disabled");
}

void Examination::CheckCompanion() {
  if (survey_.companion.isRunning) return;
  if (survey_.companion.otherSpelling.empty()) {
    Add("companion_not_running");
  } else {
    Add("companion_other_spelling", {survey_.companion.otherSpelling});
  }
}

void Examination::CheckRegistration() {
  if (runtime_.pathRegistry.state == ReadState::kMissing) Add("path_registry_missing", {runtime_.pathRegistry.path});
  if (!runtime_.pathRegistry.IsUnderstood()) return;
  const auto isThisOne = [&](const ListedFolder& each) { return SamePath(each.path, driver_.path); };
  const auto& drivers = runtime_.drivers;
  const auto outer = std::find_if(drivers.begin(), drivers.end(), [&](const ListedFolder& each) {
    return each.holdsInnerCopy && SamePath(Join(each.path, "ombrel"), driver_.path);
  });
  if (std::any_of(drivers.begin(), drivers.end(), isThisOne)) {
    CheckCopies();
  } else if (outer != drivers.end()) {
    Add("registered_outer_folder", {outer->path});
  } else {
    Add("not_registered", {driver_.path});
  }
}

// The first folder that is there is loaded, whatever follows.
void Examination::CheckCopies() {
  bool isFirst = true;
  for (const ListedFolder& each : runtime_.drivers) {
    if (!each.isOurs || !each.isThere) continue;
    const bool isThisOne = SamePath(each.path, driver_.path);
    if (isFirst && !isThisOne) Add("other_copy_first", {each.path});
    if (!isFirst && !(isThisOne && Has("other_copy_first"))) Add("registered_twice", {each.path});
    isFirst = false;
  }
}

void Examination::CheckOtherDrivers() {
  for (const ListedFolder& each : runtime_.drivers) {
    if (!each.isThere) Add("listed_folder_gone", {each.path});
    if (each.isThere && !each.isOurs && each.isAlwaysActive) Add("other_driver_always_active", {each.path});
  }
  const json& forced = runtime_.settings.At("steamvr", "forcedDriver");
  if (forced.is_string() && forced != "" && forced != "ombrel") Add("other_driver_forced", {forced.get<std::string>()});
  if (!Switch(runtime_.settings.At("steamvr", "requireHmd")).value_or(true)) Add("headset_not_required");
}

void Examination::CheckLog() {
  if (survey_.log.path.empty()) return;
  if (survey_.log.state == ReadState::kMissing) Add("log_missing", {survey_.log.path});
  if (survey_.log.state == ReadState::kUnreadable) Add("unreadable", {survey_.log.path});
  if (survey_.log.state != ReadState::kRead) return;
  for (Finding& finding : JudgeSession(survey_.log.lines)) findings_.push_back(std::move(finding));
}

void Examination::CheckPlace() {
  if (!IsAscii(driver_.path)) Add("path_not_ascii", {driver_.path});
  if (!EqualIgnoringCase(Leaf(driver_.path), "ombrel")) Add("folder_renamed", {Leaf(driver_.path)});
  if (!survey_.outerCopy.empty()) Add("folder_nested", {driver_.path});
  if (driver_.isOnNetwork) Add("network_drive", {driver_.path});
}

void Examination::CheckFiles() {
  for (const std::string& file : driver_.missing) Add("file_missing", {file});
  std::vector<const JsonFile*> files{&driver_.manifest, &driver_.defaults};
  for (const JsonFile& file : driver_.others) files.push_back(&file);
  for (const JsonFile* file : files) {
    if (file->state == ReadState::kUnreadable) Add("unreadable", {file->path});
    if (file->wrongLine != 0) Add("json_broken", {file->path, std::to_string(file->wrongLine)});
  }
  if (!driver_.manifest.IsUnderstood()) return;
  const std::string name = driver_.manifest.value.value("name", json()).is_string()
                               ? driver_.manifest.value["name"].get<std::string>()
                               : std::string();
  if (name != "ombrel") Add("manifest_other_name", {name});
}

std::string Hexadecimal(std::uint64_t number) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%llX", static_cast<unsigned long long>(number));
  return text;
}

void Examination::CheckLibrary() {
  if (!driver_.hasLibrary) return;
  const std::uint32_t error = driver_.load.error;
  if (driver_.processor != kMachineX64) {
    Add("library_not_64_bits");
  } else if (driver_.load.hasCrashed) {
    Add("library_crashes", {Hexadecimal(error)});
  } else if (error == kModuleNotFound) {
    Add("library_lacks_library");
  } else if (error == kProcedureNotFound) {
    Add("library_lacks_function");
  } else if (error == kBadImage) {
    Add("library_damaged");
  } else if (std::find(std::begin(kBlocked), std::end(kBlocked), error) != std::end(kBlocked)) {
    Add("library_blocked", {std::to_string(error)});
  } else if (error != 0) {
    Add("library_not_loading", {std::to_string(error)});
  }
}

std::int32_t Examination::Number(const char* key) {
  const json& users = runtime_.settings.At(kSection, key);
  const json& value = users.is_null() ? driver_.defaults.At(kSection, key) : users;
  if (!value.is_null() && !value.is_number()) Add("settings_wrong_type", {key});
  if (!value.is_number()) return 0;
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(value.get<double>(), -kMost, kMost));
}

void Examination::CheckSettings() {
  CheckSize();
  const std::int32_t mode = Number("hmdMode");
  if (mode == 1) Add("settings_virtual_mode");
  if (mode != 0 && mode != 1) Add("settings_odd_mode", {std::to_string(mode)});
  for (const char* key : {"RotationOffsetXDeg", "RotationOffsetYDeg", "RotationOffsetZDeg"}) Number(key);
  const json& sensor = runtime_.settings.At(kSection, "fakeSensorEnabled");
  if (!sensor.is_null() && !Switch(sensor)) Add("settings_wrong_type", {"fakeSensorEnabled"});
}

// Sizes that are missing because the shipped settings are, are told with those.
void Examination::CheckSize() {
  const std::int32_t width = Number("windowWidth");
  const std::int32_t height = Number("windowHeight");
  const std::int32_t scale = Number("renderScale");
  if (!driver_.defaults.IsUnderstood()) return;
  const DisplayGeometry geometry = ScaledGeometry(width, height, scale);
  const DisplayGeometry least = ScaledGeometry(0, 0, 0);
  if (geometry.renderTargetWidth > least.renderTargetWidth && geometry.renderTargetHeight > least.renderTargetHeight) {
    return;
  }
  Add("settings_smallest_picture",
      {std::to_string(geometry.renderTargetWidth), std::to_string(geometry.renderTargetHeight)});
}

void Examination::CheckAccount() {
  const Account& account = survey_.account;
  if (!account.signedIn.empty() && !EqualIgnoringCase(account.signedIn, account.user)) Add("account_other");
  if (survey_.companion.isRunning && survey_.companion.hasOtherRights) Add("companion_other_rights");
}

void Examination::CheckRuntime() {
  if (!runtime_.pathRegistry.IsUnderstood()) return;
  if (runtime_.folder.empty()) {
    Add("runtime_missing");
  } else if (!runtime_.missingProgram.empty()) {
    Add("runtime_incomplete", {runtime_.folder, runtime_.missingProgram});
  }
  const bool isElsewhere =
      runtime_.installed && !runtime_.folder.empty() && !SamePath(*runtime_.installed, runtime_.folder);
  if (isElsewhere) Add("runtime_elsewhere", {runtime_.folder, *runtime_.installed});
}

void Examination::CheckAdapters() {
  const Adapter* used = UsedAdapter(survey_.adapters);
  const auto hardware =
      std::count_if(survey_.adapters.begin(), survey_.adapters.end(), [](const Adapter& a) { return !a.isSoftware; });
  if (used == nullptr) {
    Add("adapter_none");
  } else if (used->isSoftware) {
    Add("adapter_software", {used->name});
  } else if (hardware > 1) {
    Add("adapters_several", {used->name});
  }
}

void Examination::CheckPipes() {
  const auto& pipes = survey_.companion.pipes;
  if (!pipes) return;
  if (!survey_.companion.isRunning) {
    if (!pipes->empty()) Add("pipes_without_companion");
  } else if (pipes->empty()) {
    Add("pipes_missing");
  } else if (pipes->size() == 1) {
    const bool isIn = pipes->front().ends_with("In");
    Add("pipe_missing", {isIn ? "PellmorOmbrelTransmissionPipeV1Out" : "PellmorOmbrelTransmissionPipeV1In"});
  }
}

void Examination::CheckCrash() {
  if (!survey_.crash) return;
  const CrashDump& crash = *survey_.crash;
  if (crash.site.isInModule) {
    Add("crash_in_driver", {crash.path, crash.written, Hexadecimal(crash.site.offset)});
  } else {
    Add("crash_with_driver", {crash.path, crash.written});
  }
}

void Examination::CheckUnderstanding() {
  for (const JsonFile* file : {&runtime_.pathRegistry, &runtime_.settings}) {
    if (file->state == ReadState::kUnreadable) Add("unreadable", {file->path});
    if (file->wrongLine != 0) Add("not_understood", {file->path, std::to_string(file->wrongLine)});
  }
  for (const std::string& key : runtime_.wrongKeys) Add("unexpected_value", {runtime_.pathRegistry.path, key});
}

struct Consequence {
  std::string_view finding;
  std::string_view cause;
};

// A finding of the log, or of nothing but the log's silence, whose cause is found by itself.
constexpr Consequence kConsequences[] = {
    {"log_blocked", "blocked_by_safe_mode"},
    {"log_disabled", "disabled"},
    {"log_companion_missing", "companion_not_running"},
    {"log_companion_missing", "companion_other_spelling"},
    {"log_duplicate", "other_copy_first"},
    {"log_duplicate", "registered_twice"},
    {"log_library_not_found", "file_missing"},
    {"log_library_not_found", "folder_renamed"},
    {"log_manifest_invalid", "json_broken"},
    {"log_manifest_invalid", "file_missing"},
    {"log_input_profile", "json_broken"},
    {"log_input_profile", "file_missing"},
    {"log_remapping", "json_broken"},
    {"log_remapping", "file_missing"},
    {"log_smallest_picture", "settings_smallest_picture"},
    {"log_silent", "path_registry_missing"},
    {"log_silent", "not_registered"},
    {"log_silent", "registered_outer_folder"},
    {"log_silent", "file_missing"},
    {"log_silent", "blocked_by_safe_mode"},
    {"log_silent", "disabled"},
    {"log_silent", "not_understood"},
    {"log_not_activated", "other_driver_forced"},
    {"log_load_error", "library_not_64_bits"},
    {"log_load_error", "library_lacks_library"},
    {"log_load_error", "library_lacks_function"},
    {"log_load_error", "library_damaged"},
    {"log_load_error", "library_blocked"},
    {"log_load_error", "library_not_loading"},
    {"log_load_error", "library_crashes"},
    {"log_load_error", "path_not_ascii"},
    {"pipes_without_companion", "companion_other_spelling"},
    {"path_registry_missing", "account_other"},
    {"not_registered", "account_other"},
    {"runtime_missing", "unexpected_value"},
    {"not_registered", "unexpected_value"},
};

void Examination::DropConsequences() {
  const std::vector<Finding> all = findings_;
  const auto isFound = [&](std::string_view id) {
    return std::any_of(all.begin(), all.end(), [&](const Finding& each) { return each.id == id; });
  };
  for (const Consequence& each : kConsequences) {
    if (isFound(each.cause)) std::erase_if(findings_, [&](const Finding& one) { return one.id == each.finding; });
  }
}

void Examination::Sort() {
  const auto place = [](const Finding& finding) { return &TextOf(finding.id); };
  std::stable_sort(findings_.begin(), findings_.end(),
                   [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
}

}  // namespace

const Adapter* UsedAdapter(const std::vector<Adapter>& adapters) {
  const auto preferred = std::find_if(adapters.begin(), adapters.end(), [](const Adapter& a) { return a.isPreferred; });
  if (preferred != adapters.end()) return &*preferred;
  return adapters.empty() ? nullptr : &adapters.front();
}

std::vector<Finding> Examine(const Survey& survey) { return Examination(survey).Run(); }

}  // namespace ombrel::doctor
