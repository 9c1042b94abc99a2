#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "doctor/machine.h"

namespace ombrel::doctor {

// Takes out of texts what tells whose computer they are from: the names of users, of the computer and of the home folder,
// in any case, as UTF-8 or with the escapes of JSON. Names of fewer than four letters count as whole words only, since
// they are parts of many others.
class Anonymizer {
 public:
  explicit Anonymizer(const Account& account);

  [[nodiscard]] std::string Clean(std::string_view text) const;
  // All texts in it, names of members too.
  [[nodiscard]] nlohmann::json CleanJson(const nlohmann::json& value) const;

 private:
  struct Name {
    std::string lower;
    const char* substitute;
  };

  void Add(const std::string& name, const char* substitute);

  std::vector<Name> names_;  // the longest first
};

}  // namespace ombrel::doctor
