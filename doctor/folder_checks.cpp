#include <algorithm>
#include <limits>

#include "doctor/paths.h"
#include "hmd/display_geometry.h"
#include "subjects.h"

namespace ombrel::doctor {
namespace {

using nlohmann::json;

// Windows' errors of loading a library, as numbers, since these checks are made on any system.
constexpr std::uint32_t kModuleNotFound = 126;
constexpr std::uint32_t kProcedureNotFound = 127;
constexpr std::uint32_t kBadImage = 193;
// Access denied, virus infected, virus deleted, and two kinds of policy.
constexpr std::uint32_t kBlocked[] = {5, 225, 226, 1260, 4551};

void CheckPlace(const Survey& survey, Findings& findings) {
  const DriverFolder& driver = survey.driver;
  if (!IsAscii(driver.path)) findings.push_back({"path_not_ascii", {driver.path}});
  if (!EqualIgnoringCase(Leaf(driver.path), "ombrel")) findings.push_back({"folder_renamed", {Leaf(driver.path)}});
  if (!survey.outerCopy.empty()) findings.push_back({"folder_nested", {driver.path}});
  if (driver.isOnNetwork) findings.push_back({"network_drive", {driver.path}});
}

void CheckFiles(const DriverFolder& driver, Findings& findings) {
  for (const std::string& file : driver.missing) findings.push_back({"file_missing", {file}});
  std::vector<const JsonFile*> files{&driver.manifest, &driver.defaults};
  for (const JsonFile& file : driver.others) files.push_back(&file);
  for (const JsonFile* file : files) {
    if (file->state == ReadState::kUnreadable) findings.push_back({"unreadable", {file->path}});
    if (file->wrongLine != 0) findings.push_back({"json_broken", {file->path, std::to_string(file->wrongLine)}});
  }
  if (!driver.manifest.IsUnderstood()) return;
  const json name = driver.manifest.value.value("name", json());
  if (name != "ombrel") findings.push_back({"manifest_other_name", {name.is_string() ? name.get<std::string>() : ""}});
}

void CheckLibrary(const DriverFolder& driver, Findings& findings) {
  if (!driver.hasLibrary) return;
  const std::uint32_t error = driver.load.error;
  if (driver.processor != kMachineX64) {
    findings.push_back({"library_not_64_bits"});
  } else if (driver.load.hasCrashed) {
    findings.push_back({"library_crashes", {Hexadecimal(error)}});
  } else if (error == kModuleNotFound) {
    findings.push_back({"library_lacks_library"});
  } else if (error == kProcedureNotFound) {
    findings.push_back({"library_lacks_function"});
  } else if (error == kBadImage) {
    findings.push_back({"library_damaged"});
  } else if (std::find(std::begin(kBlocked), std::end(kBlocked), error) != std::end(kBlocked)) {
    findings.push_back({"library_blocked", {std::to_string(error)}});
  } else if (error != 0) {
    findings.push_back({"library_not_loading", {std::to_string(error)}});
  }
}

class SettingsCheck {
 public:
  SettingsCheck(const Survey& survey, Findings& findings)
      : users_(survey.runtime.settings), defaults_(survey.driver.defaults), findings_(findings) {}

  void Run() {
    CheckSize();
    const std::int32_t mode = Number("hmdMode");
    if (mode == 1) findings_.push_back({"settings_virtual_mode"});
    if (mode != 0 && mode != 1) findings_.push_back({"settings_odd_mode", {std::to_string(mode)}});
    for (const char* key : {"RotationOffsetXDeg", "RotationOffsetYDeg", "RotationOffsetZDeg"}) Number(key);
    const json& sensor = users_.At(kSection, "fakeSensorEnabled");
    if (!sensor.is_null() && !Switch(sensor)) findings_.push_back({"settings_wrong_type", {"fakeSensorEnabled"}});
  }

 private:
  // A whole number that the driver reads: the user's, else the shipped one; 0 when neither is one.
  std::int32_t Number(const char* key) {
    const json& users = users_.At(kSection, key);
    const json& value = users.is_null() ? defaults_.At(kSection, key) : users;
    if (!value.is_null() && !value.is_number()) findings_.push_back({"settings_wrong_type", {key}});
    if (!value.is_number()) return 0;
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(value.get<double>(), -kMost, kMost));
  }

  // Sizes that are missing because the shipped settings are, are told with those.
  void CheckSize() {
    const std::int32_t width = Number("windowWidth");
    const std::int32_t height = Number("windowHeight");
    const std::int32_t scale = Number("renderScale");
    if (!defaults_.IsUnderstood()) return;
    const DisplayGeometry given = ScaledGeometry(width, height, scale);
    const DisplayGeometry least = ScaledGeometry(0, 0, 0);
    if (given.renderTargetWidth > least.renderTargetWidth && given.renderTargetHeight > least.renderTargetHeight)
      return;
    findings_.push_back({"settings_smallest_picture",
                         {std::to_string(given.renderTargetWidth), std::to_string(given.renderTargetHeight)}});
  }

  const JsonFile& users_;
  const JsonFile& defaults_;
  Findings& findings_;
};

}  // namespace

void CheckFolder(const Survey& survey, Findings& findings) {
  CheckPlace(survey, findings);
  CheckFiles(survey.driver, findings);
  CheckLibrary(survey.driver, findings);
  SettingsCheck(survey, findings).Run();
}

}  // namespace ombrel::doctor
