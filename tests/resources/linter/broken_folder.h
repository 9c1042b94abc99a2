#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <string>

#include "lint.h"

namespace ombrel::test {

// A copy of the driver's folder to break, and what the driver's sources say, to change.
class BrokenFolder : public testing::Test {
 protected:
  BrokenFolder();
  ~BrokenFolder() override;

  void Edit(const std::string& file, const std::function<void(nlohmann::json&)>& change) const;
  void ReplaceText(const std::string& file, const std::string& old, const std::string& with) const;
  void Write(const std::string& file, const std::string& bytes) const;
  [[nodiscard]] std::string Read(const std::string& file) const;
  void Remove(const std::string& file) const { std::filesystem::remove(folder_ / file); }

  [[nodiscard]] Findings Found() const { return Lint(folder_, facts); }
  // The copy has these faults and no others.
  void ExpectFault(const std::string& finding) const;
  void ExpectFaults(const std::vector<std::string>& findings) const;

  SourceFacts facts;

  static constexpr const char* kManifest = "driver.vrdrivermanifest";
  static constexpr const char* kSettings = "resources/settings/default.vrsettings";
  static constexpr const char* kProfile = "resources/input/controller_profile.json";
  static constexpr const char* kMenus = "resources/input/bindings_menus.json";
  static constexpr const char* kLegacy = "resources/input/bindings_legacy.json";
  static constexpr const char* kRemapping = "resources/input/remapping.json";
  static constexpr const char* kIcons = "resources/driver.vrresources";
  static constexpr const char* kTexts = "resources/localization/localization.json";

 private:
  std::filesystem::path folder_;
};

}  // namespace ombrel::test
