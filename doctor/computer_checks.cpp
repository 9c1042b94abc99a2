#include <algorithm>

#include "doctor/checks.h"
#include "doctor/paths.h"
#include "subjects.h"

namespace ombrel::doctor {
namespace {

void CheckAccount(const Survey& survey, Findings& findings) {
  const Account& account = survey.account;
  const bool isOther = !account.signedIn.empty() && !EqualIgnoringCase(account.signedIn, account.user);
  if (isOther) findings.push_back({"account_other"});
  if (survey.companion.isRunning && survey.companion.hasOtherRights) findings.push_back({"companion_other_rights"});
}

void CheckRuntime(const Runtime& runtime, Findings& findings) {
  if (!runtime.pathRegistry.IsUnderstood()) return;
  if (runtime.folder.empty()) {
    findings.push_back({"runtime_missing"});
    return;
  }
  if (!runtime.missingProgram.empty())
    findings.push_back({"runtime_incomplete", {runtime.folder, runtime.missingProgram}});
  const bool isElsewhere = runtime.installed && !SamePath(*runtime.installed, runtime.folder);
  if (isElsewhere) findings.push_back({"runtime_elsewhere", {runtime.folder, *runtime.installed}});
}

void CheckAdapters(const std::vector<Adapter>& adapters, Findings& findings) {
  const Adapter* used = UsedAdapter(adapters);
  const auto hardware = std::count_if(adapters.begin(), adapters.end(), [](const Adapter& a) { return !a.isSoftware; });
  if (used == nullptr) {
    findings.push_back({"adapter_none"});
  } else if (used->isSoftware) {
    findings.push_back({"adapter_software", {used->name}});
  } else if (hardware > 1) {
    findings.push_back({"adapters_several", {used->name}});
  }
}

void CheckPipes(const Companion& companion, Findings& findings) {
  const auto& pipes = companion.pipes;
  if (!pipes) return;
  if (!companion.isRunning) {
    if (!pipes->empty()) findings.push_back({"pipes_without_companion"});
  } else if (pipes->empty()) {
    findings.push_back({"pipes_missing"});
  } else if (pipes->size() == 1) {
    const bool isIn = pipes->front().ends_with("In");
    findings.push_back(
        {"pipe_missing", {isIn ? "PellmorOmbrelTransmissionPipeV1Out" : "PellmorOmbrelTransmissionPipeV1In"}});
  }
}

void CheckCrash(const CrashDump& crash, Findings& findings) {
  if (crash.site.isInModule) {
    findings.push_back({"crash_in_driver", {crash.path, crash.written, Hexadecimal(crash.site.offset)}});
  } else {
    findings.push_back({"crash_with_driver", {crash.path, crash.written}});
  }
}

void CheckUnderstanding(const Runtime& runtime, Findings& findings) {
  for (const JsonFile* file : {&runtime.pathRegistry, &runtime.settings}) {
    if (file->state == ReadState::kUnreadable) findings.push_back({"unreadable", {file->path}});
    if (file->wrongLine != 0) findings.push_back({"not_understood", {file->path, std::to_string(file->wrongLine)}});
  }
  for (const std::string& key : runtime.wrongKeys) {
    findings.push_back({"unexpected_value", {runtime.pathRegistry.path, key}});
  }
}

}  // namespace

const Adapter* UsedAdapter(const std::vector<Adapter>& adapters) {
  const auto preferred = std::find_if(adapters.begin(), adapters.end(), [](const Adapter& a) { return a.isPreferred; });
  if (preferred != adapters.end()) return &*preferred;
  return adapters.empty() ? nullptr : &adapters.front();
}

void CheckComputer(const Survey& survey, Findings& findings) {
  CheckAccount(survey, findings);
  CheckRuntime(survey.runtime, findings);
  CheckAdapters(survey.adapters, findings);
  CheckPipes(survey.companion, findings);
  if (survey.crash) CheckCrash(*survey.crash, findings);
  CheckUnderstanding(survey.runtime, findings);
}

}  // namespace ombrel::doctor
