#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "doctor/finding.h"

namespace ombrel::doctor {

// The lines of the newest session in the log of the runtime's server. A file in which no session begins is one session.
[[nodiscard]] std::vector<std::string> NewestSession(std::string_view log);

// Whether a line is the driver's, or about it.
[[nodiscard]] bool IsAboutUs(std::string_view line);

// What a session's lines tell of what went wrong, each once.
[[nodiscard]] std::vector<Finding> JudgeSession(const std::vector<std::string>& lines);

// Whether the session's lines show that the headset was taken.
[[nodiscard]] bool HasActivatedHeadset(const std::vector<std::string>& lines);

}  // namespace ombrel::doctor
