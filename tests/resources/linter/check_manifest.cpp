#include <regex>

#include "lint.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kManifest = "driver.vrdrivermanifest";

// "*.*", or a USB vendor and product, each in hex or a star: "28de.*".
bool IsPresence(const json& entry) {
  static const std::regex kPattern(R"((\*|[0-9a-fA-F]{1,4})\.(\*|[0-9a-fA-F]{1,4}))");
  return entry.is_string() && std::regex_match(entry.get<std::string>(), kPattern);
}

bool IsPresenceList(const json& list) {
  if (!list.is_array() || list.empty()) return false;
  for (const json& entry : list) {
    if (!IsPresence(entry)) return false;
  }
  return true;
}

}  // namespace

void CheckManifest(const DriverFiles& files, Findings& findings) {
  const json& manifest = files.Document(kManifest);
  const auto complain = [&](const std::string& what) { findings.push_back(std::string(kManifest) + ": " + what); };
  if (!manifest.is_object()) return complain("is missing or no object");
  const std::string name = files.Name();
  if (!std::regex_match(name, std::regex("[a-z0-9_]+"))) complain("\"name\" is not a name");
  const std::string library = "bin/win64/driver_" + name + ".dll";
  if (!files.Has(library)) complain("names a driver whose library " + library + " is missing");
  if (manifest.value("directory", json()) != "") complain("\"directory\" is not the manifest's own folder");
  if (manifest.value("resourceOnly", json()) != false) complain("\"resourceOnly\" is not false");
  if (!manifest.value("alwaysActivate", json()).is_boolean()) complain("\"alwaysActivate\" is no truth value");
  if (!IsPresenceList(manifest.value("hmd_presence", json()))) complain("\"hmd_presence\" lists no USB ids");
}

}  // namespace ombrel::test
