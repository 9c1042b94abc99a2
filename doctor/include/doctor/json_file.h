#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "doctor/machine.h"

namespace ombrel::doctor {

// A file of settings: JSON in UTF-8, which may begin with a byte order mark and have comments.
struct JsonFile {
  std::string path;
  ReadState state = ReadState::kMissing;
  int wrongLine = 0;     // the first line that is no JSON; 0 when the file was understood
  std::string bytes;     // as they stand in the file
  nlohmann::json value;  // an object, empty unless the file was understood

  [[nodiscard]] bool IsUnderstood() const { return state == ReadState::kRead && wrongLine == 0; }
  // The value at section/key, null when there is none.
  [[nodiscard]] const nlohmann::json& At(const char* section, const char* key) const;
};

[[nodiscard]] JsonFile ReadJson(Machine& machine, const std::string& path);

// Texts of a list, or of a text that stands for a list of one; a missing value, and null, is the empty list. Nothing when
// the value is something else, or has something else in it.
[[nodiscard]] std::optional<std::vector<std::string>> Texts(const nlohmann::json& object, const char* key);

// A switch as the runtime writes it, or as a number.
[[nodiscard]] std::optional<bool> Switch(const nlohmann::json& value);

}  // namespace ombrel::doctor
