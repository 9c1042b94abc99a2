#pragma once

#include <set>
#include <string>
#include <utility>

// The faults that the command line asks for, each of which breaks one rule.
class Faults {
 public:
  explicit Faults(std::set<std::string> names) : names_(std::move(names)) {}

  [[nodiscard]] static const std::set<std::string>& Known();
  [[nodiscard]] bool Has(const std::string& name) const;

 private:
  std::set<std::string> names_;
};
