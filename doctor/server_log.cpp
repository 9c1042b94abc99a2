#include "doctor/server_log.h"

#include <algorithm>
#include <iterator>

#include "doctor/paths.h"

namespace ombrel::doctor {
namespace {

// The server's first line after a start tells its process id.
constexpr std::string_view kSessionStart = "startup with PID=";
constexpr std::string_view kStarted = "Ombrel process is running";
constexpr std::string_view kActivated = "HMD activated with id";

// A line that tells what went wrong: it has both texts in it.
struct Symptom {
  std::string_view first, second;
  std::string_view finding;
};

constexpr Symptom kSymptoms[] = {
    {"Not loading driver ombrel", "safe mode", "log_blocked"},
    {"Not loading driver ombrel", "disabled in settings", "log_disabled"},
    {"Pellmor not active", "", "log_companion_missing"},
    {"Unable to load driver ombrel because of error", "(108)", "log_companion_missing"},
    {"Unable to load driver ombrel because of error", "(105)", "log_interface_missing"},
    {"Skipping duplicate external driver", "ombrel", "log_duplicate"},
    {"Skipping driver \"ombrel\"", "invalid", "log_manifest_invalid"},
    {"Unable to load driver ombrel", "shared library not found", "log_library_not_found"},
    {"Failed to load input profile", "mbrel", "log_input_profile"},
    {"[Remapping]", "failed", "log_remapping"},
    {"Error while creating boolean component", "", "log_input_refused"},
    {"New driver registered (serial Ombrel", "with status 0", "log_controller_refused"},
    {"driver_ombrel: Render Target: 500 600", "", "log_smallest_picture"},
};

bool Shows(std::string_view line, const Symptom& symptom) {
  // The server remaps other devices' inputs as well.
  const bool isOurs = symptom.finding != "log_remapping" || Contains(LowerAscii(line), "ombrel");
  return isOurs && Contains(line, symptom.first) && Contains(line, symptom.second);
}

// The last number in brackets, as the server gives an error's code.
std::string CodeIn(std::string_view line) {
  const std::size_t close = line.rfind(')');
  const std::size_t open = line.rfind('(', close);
  if (open == std::string_view::npos || close == std::string_view::npos) return "?";
  return std::string(line.substr(open + 1, close - open - 1));
}

bool Has(const std::vector<std::string>& lines, std::string_view text) {
  return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) { return Contains(line, text); });
}

void AddOnce(std::vector<Finding>& findings, std::string_view id, std::vector<std::string> values = {}) {
  const auto isSame = [&](const Finding& finding) { return finding.id == id; };
  if (std::none_of(findings.begin(), findings.end(), isSame)) findings.push_back({id, std::move(values)});
}

// What a later good start in the same session refutes.
bool KeepsFromStarting(const Finding& finding) {
  constexpr std::string_view kKeepers[] = {"log_blocked",           "log_disabled",         "log_companion_missing",
                                           "log_interface_missing", "log_manifest_invalid", "log_library_not_found",
                                           "log_load_error"};
  return std::find(std::begin(kKeepers), std::end(kKeepers), finding.id) != std::end(kKeepers);
}

void JudgeLine(const std::string& line, std::vector<Finding>& findings) {
  if (Contains(line, kStarted)) std::erase_if(findings, KeepsFromStarting);
  const auto symptom =
      std::find_if(std::begin(kSymptoms), std::end(kSymptoms), [&](const Symptom& each) { return Shows(line, each); });
  if (symptom != std::end(kSymptoms)) {
    AddOnce(findings, symptom->finding);
  } else if (Contains(line, "Unable to load driver ombrel because of error")) {
    AddOnce(findings, "log_load_error", {CodeIn(line)});
  }
}

// What the last of these lines says holds.
bool IsDeviceLost(const std::vector<std::string>& lines) {
  bool isLost = false;
  for (const std::string& line : lines) {
    if (Contains(line, "Graphics device lost, reason")) isLost = true;
    if (Contains(line, "Graphics device made anew")) isLost = false;
  }
  return isLost;
}

}  // namespace

std::vector<std::string> NewestSession(std::string_view log) {
  std::vector<std::string> lines = Lines(log);
  const auto start =
      std::find_if(lines.rbegin(), lines.rend(), [](const std::string& line) { return Contains(line, kSessionStart); });
  if (start != lines.rend()) lines.erase(lines.begin(), std::prev(start.base()));
  return lines;
}

bool IsAboutUs(std::string_view line) {
  if (Contains(LowerAscii(line), "ombrel") || Contains(line, kActivated)) return true;
  return std::any_of(std::begin(kSymptoms), std::end(kSymptoms),
                     [&](const Symptom& symptom) { return Shows(line, symptom); });
}

bool HasActivatedHeadset(const std::vector<std::string>& lines) { return Has(lines, kActivated); }

std::vector<Finding> JudgeSession(const std::vector<std::string>& lines) {
  std::vector<Finding> findings;
  if (std::none_of(lines.begin(), lines.end(), IsAboutUs)) return {{"log_silent", {}}};
  for (const std::string& line : lines) JudgeLine(line, findings);
  if (Has(lines, kStarted) && !HasActivatedHeadset(lines)) AddOnce(findings, "log_not_activated");
  if (IsDeviceLost(lines)) AddOnce(findings, "log_device_lost");
  return findings;
}

}  // namespace ombrel::doctor
