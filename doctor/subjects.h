#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/survey.h"

// What is examined, in three subjects: each looks at its part of a survey, and has the texts of what it may find. Findings
// of a later subject come later in reports.
namespace ombrel::doctor {

using Findings = std::vector<Finding>;

inline constexpr const char* kSection = "driver_ombrel";  // of the runtime's settings

// What keeps the driver from being started, or is told by the log of the last start.
void CheckStart(const Survey& survey, Findings& findings);
[[nodiscard]] std::span<const FindingText> StartTexts();

// The driver's folder, what lies in it, and the settings.
void CheckFolder(const Survey& survey, Findings& findings);
[[nodiscard]] std::span<const FindingText> FolderTexts();

// What is around the driver: accounts, runtime, graphics, link; crashes, and what could not be judged.
void CheckComputer(const Survey& survey, Findings& findings);
[[nodiscard]] std::span<const FindingText> ComputerTexts();

[[nodiscard]] std::string Hexadecimal(std::uint64_t number);

}  // namespace ombrel::doctor
