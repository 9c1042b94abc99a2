#include <algorithm>

#include "doctor/paths.h"
#include "doctor/server_log.h"
#include "subjects.h"

namespace ombrel::doctor {
namespace {

void CheckBlocked(const JsonFile& settings, Findings& findings) {
  if (Switch(settings.At(kSection, "blocked_by_safe_mode")).value_or(false))
    findings.push_back({"blocked_by_safe_mode"});
  if (!Switch(settings.At(kSection, "enable")).value_or(true)) findings.push_back({"disabled"});
}

void CheckCompanion(const Companion& companion, Findings& findings) {
  if (companion.isRunning) return;
  if (companion.otherSpelling.empty()) {
    findings.push_back({"companion_not_running"});
  } else {
    findings.push_back({"companion_other_spelling", {companion.otherSpelling}});
  }
}

// The first folder that is there is loaded, whatever follows.
void CheckCopies(const std::string& driver, const Runtime& runtime, Findings& findings) {
  bool isFirst = true, isOtherFirst = false;
  for (const ListedFolder& each : runtime.drivers) {
    if (!each.isOurs || !each.isThere) continue;
    const bool isThisOne = SamePath(each.path, driver);
    if (isFirst) {
      isOtherFirst = !isThisOne;
      if (isOtherFirst) findings.push_back({"other_copy_first", {each.path}});
    } else if (!isThisOne || !isOtherFirst) {
      findings.push_back({"registered_twice", {each.path}});
    }
    isFirst = false;
  }
}

void CheckRegistration(const std::string& driver, const Runtime& runtime, Findings& findings) {
  const JsonFile& registry = runtime.pathRegistry;
  if (registry.state == ReadState::kMissing) findings.push_back({"path_registry_missing", {registry.path}});
  if (!registry.IsUnderstood()) return;
  const auto isThisOne = [&](const ListedFolder& each) { return SamePath(each.path, driver); };
  const auto& drivers = runtime.drivers;
  const auto outer = std::find_if(drivers.begin(), drivers.end(), [&](const ListedFolder& each) {
    return each.holdsInnerCopy && SamePath(Join(each.path, "ombrel"), driver);
  });
  if (std::any_of(drivers.begin(), drivers.end(), isThisOne)) {
    CheckCopies(driver, runtime, findings);
  } else if (outer != drivers.end()) {
    findings.push_back({"registered_outer_folder", {outer->path}});
  } else {
    findings.push_back({"not_registered", {driver}});
  }
}

void CheckOtherDrivers(const Runtime& runtime, Findings& findings) {
  for (const ListedFolder& each : runtime.drivers) {
    if (!each.isThere) {
      findings.push_back({"listed_folder_gone", {each.path}});
    } else if (!each.isOurs && each.isAlwaysActive) {
      findings.push_back({"other_driver_always_active", {each.path}});
    }
  }
  const nlohmann::json& forced = runtime.settings.At("steamvr", "forcedDriver");
  const auto forcedName = forced.is_string() ? forced.get<std::string>() : std::string();
  if (!forcedName.empty() && forcedName != "ombrel") findings.push_back({"other_driver_forced", {forcedName}});
  if (!Switch(runtime.settings.At("steamvr", "requireHmd")).value_or(true))
    findings.push_back({"headset_not_required"});
}

void CheckLog(const ServerLog& log, Findings& findings) {
  if (log.path.empty()) return;
  if (log.state == ReadState::kMissing) findings.push_back({"log_missing", {log.path}});
  if (log.state == ReadState::kUnreadable) findings.push_back({"unreadable", {log.path}});
  if (log.state != ReadState::kRead) return;
  for (Finding& finding : JudgeSession(log.lines)) findings.push_back(std::move(finding));
}

}  // namespace

void CheckStart(const Survey& survey, Findings& findings) {
  CheckBlocked(survey.runtime.settings, findings);
  CheckCompanion(survey.companion, findings);
  CheckRegistration(survey.driver.path, survey.runtime, findings);
  CheckOtherDrivers(survey.runtime, findings);
  CheckLog(survey.log, findings);
}

}  // namespace ombrel::doctor
