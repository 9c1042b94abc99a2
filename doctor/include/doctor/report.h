#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "doctor/anonymizer.h"
#include "doctor/finding.h"
#include "doctor/survey.h"

namespace ombrel::doctor {

// Something that was looked at, found or not found, for who reads a report.
struct Fact {
  std::string_view id;
  std::vector<std::string> values;
};

struct Report {
  std::vector<Finding> findings;
  std::vector<Fact> facts;

  // Hints aside.
  [[nodiscard]] bool IsWell() const;
};

[[nodiscard]] Report MakeReport(const Survey& survey);

// For people, and for programs; docs/doctor.md describes the latter.
[[nodiscard]] std::string AsText(const Report& report, Language language);
[[nodiscard]] nlohmann::ordered_json AsJson(const Report& report, Language language, const Anonymizer& anonymizer);

struct NamedFile {
  std::string name;
  std::string bytes;
};

// What somebody who helps needs, without the names of people and computers.
[[nodiscard]] std::vector<NamedFile> MakeBundle(const Survey& survey, const Report& report);

}  // namespace ombrel::doctor
