#include "doctor/checks.h"

#include <algorithm>

#include "subjects.h"

namespace ombrel::doctor {
namespace {

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

void DropConsequences(Findings& findings) {
  const Findings all = findings;
  const auto isFound = [&](std::string_view id) {
    return std::any_of(all.begin(), all.end(), [&](const Finding& each) { return each.id == id; });
  };
  for (const Consequence& each : kConsequences) {
    if (isFound(each.cause)) std::erase_if(findings, [&](const Finding& one) { return one.id == each.finding; });
  }
}

void Sort(Findings& findings) {
  const auto place = [](const Finding& finding) { return &TextOf(finding.id); };
  std::stable_sort(findings.begin(), findings.end(),
                   [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
}

}  // namespace

std::vector<Finding> Examine(const Survey& survey) {
  Findings findings;
  CheckStart(survey, findings);
  CheckFolder(survey, findings);
  CheckComputer(survey, findings);
  DropConsequences(findings);
  Sort(findings);
  return findings;
}

}  // namespace ombrel::doctor
