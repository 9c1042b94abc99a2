// The runtime's driver interface says of status icons: 50 x 32 pixels for headsets and 32 x 32 for other devices. On
// dense displays it takes a file of twice that size with @2x before the extension.
#include <map>

#include "lint.h"
#include "png.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kIconsFile = "resources/driver.vrresources";
constexpr const char* kStates[] = {"Off",        "Searching", "SearchingAlert", "Ready",
                                   "ReadyAlert", "NotReady",  "Standby",        "AlertLow"};

const std::map<std::string, PictureSize>& Devices() {
  static const std::map<std::string, PictureSize> kDevices = {
      {"HMD", {50, 32}}, {"Controller", {32, 32}}, {"TrackingReference", {32, 32}}};
  return kDevices;
}

std::set<std::string> Properties() {
  std::set<std::string> properties;
  for (const char* state : kStates) properties.insert("Prop_NamedIconPathDevice" + std::string(state) + "_String");
  return properties;
}

std::string DenseForm(std::string file) {
  const std::size_t dot = file.rfind('.');
  return file.insert(dot, "@2x");
}

void CheckPicture(const DriverFiles& files, const std::string& file, PictureSize expected, Findings& findings) {
  const auto size = PngSize(files.Bytes(file));
  if (!size) {
    findings.push_back(file + ": is not a whole PNG file");
  } else if (*size != expected) {
    findings.push_back(file + ": is not " + std::to_string(expected.width) + " x " + std::to_string(expected.height));
  }
}

void CheckDevice(const DriverFiles& files, const std::string& device, PictureSize size, Findings& findings) {
  const json& icons = files.Document(kIconsFile)["statusicons"][device];
  for (const std::string& property : Properties()) {
    const auto file = files.Resolve(TextAt(icons, property));
    if (!file) {
      findings.push_back(std::string(kIconsFile) + ": " + device + " has no " + property);
    } else if (files.Has(*file)) {
      CheckPicture(files, *file, size, findings);
      CheckPicture(files, DenseForm(*file), {size.width * 2, size.height * 2}, findings);
    }
  }
  for (const auto& [property, value] : icons.items()) {
    if (!Properties().contains(property)) {
      findings.push_back(std::string(kIconsFile) + ": " + device + " has " + property +
                         ", which the runtime does not know");
    }
  }
}

}  // namespace

void CheckIcons(const DriverFiles& files, Findings& findings) {
  const json& document = files.Document(kIconsFile);
  if (TextAt(document, "jsonid") != "vrresources")
    findings.push_back(std::string(kIconsFile) + ": \"jsonid\" is wrong");
  const json icons = document.is_object() ? document.value("statusicons", json()) : json();
  for (const auto& [device, size] : Devices()) {
    if (icons.is_object() && icons.contains(device)) {
      CheckDevice(files, device, size, findings);
    } else {
      findings.push_back(std::string(kIconsFile) + ": has no icons for " + device);
    }
  }
  for (const auto& [device, value] : icons.items()) {
    if (!Devices().contains(device)) findings.push_back(std::string(kIconsFile) + ": the driver makes no " + device);
  }
}

}  // namespace ombrel::test
