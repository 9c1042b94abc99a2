#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace ombrel::test {

// What is wrong with a folder, one sentence each, beginning with the file.
using Findings = std::vector<std::string>;

// A driver's folder as it is installed. Files are named as in "resources/icons/headset_off.png".
class DriverFiles {
 public:
  // Reads everything; JSON that cannot be parsed is a finding and counts as absent.
  DriverFiles(const std::filesystem::path& folder, Findings& findings);

  [[nodiscard]] const std::set<std::string>& Names() const { return names_; }
  [[nodiscard]] bool Has(const std::string& file) const { return names_.contains(file); }
  [[nodiscard]] std::string Bytes(const std::string& file) const;

  // The JSON files that could be parsed.
  [[nodiscard]] const std::map<std::string, nlohmann::json>& Documents() const { return documents_; }
  // Null when there is no such file.
  [[nodiscard]] const nlohmann::json& Document(const std::string& file) const;

  // The driver's name by its manifest; empty when that says none.
  [[nodiscard]] std::string Name() const;
  // "{name}/icons/a.png" is the file "resources/icons/a.png". Nothing when the name is not this driver's.
  [[nodiscard]] std::optional<std::string> Resolve(const std::string& reference) const;
  // The document that a reference leads to; null when there is none.
  [[nodiscard]] const nlohmann::json& Referred(const nlohmann::json& reference) const;

 private:
  std::filesystem::path folder_;
  std::set<std::string> names_;
  std::map<std::string, nlohmann::json> documents_;
};

// object[key] if that is a string, else an empty one.
[[nodiscard]] std::string TextAt(const nlohmann::json& object, const std::string& key);

}  // namespace ombrel::test
