#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "session_figures.h"
#include "session_record.h"

namespace bench {

/// What a session's folder says about it, as report.schema.json has verdicts and sections.
struct SessionReport {
  std::string line;  ///< for people, without the name of the mode
  nlohmann::ordered_json verdicts = nlohmann::ordered_json::array();
  nlohmann::ordered_json section;
};

/// A session that left no files has a bad verdict that says so. `mode` is its title, such as "Direct mode".
[[nodiscard]] SessionReport ReportOf(const std::string& mode, const std::filesystem::path& folder);

/// "bad" if one of the verdicts is, else "unknown" if one is or there is none, else "good".
[[nodiscard]] std::string Overall(const nlohmann::ordered_json& verdicts);

}  // namespace bench
