#pragma once

#include <set>
#include <string>

#include "lint.h"

namespace ombrel::test {

// The controllers' input profile, as other rules need it. Everything is empty where the profile is wrong.
class InputProfile {
 public:
  InputProfile(const DriverFiles& files, const SourceFacts& facts);

  [[nodiscard]] const std::string& File() const { return file_; }
  [[nodiscard]] const nlohmann::json& Document() const { return document_; }
  [[nodiscard]] std::string ControllerType() const { return TextAt(document_, "controller_type"); }
  // "/input/trackpad" and what it is made of; an empty object when there is no such path.
  [[nodiscard]] nlohmann::json Source(const std::string& path) const;
  [[nodiscard]] std::set<std::string> Paths() const;
  // "/input/trackpad/x": all that the paths are made of, as a driver creates them. An output has no parts.
  [[nodiscard]] std::set<std::string> Components() const;
  // The file that the URL of a binding names: it is relative to the profile's own folder.
  [[nodiscard]] std::string FileBeside(const std::string& url) const;
  [[nodiscard]] std::set<std::string> DefaultBindings() const;

 private:
  std::string file_;
  const nlohmann::json& document_;
};

// "/input/grip" of "/user/hand/left/input/grip"; empty when it is no path of a hand.
[[nodiscard]] std::string WithoutHand(const std::string& path);

}  // namespace ombrel::test
