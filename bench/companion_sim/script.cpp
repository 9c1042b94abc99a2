#include "script.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace bench {

using namespace companion;

namespace {

using nlohmann::json;

// The steps, and the arguments that each may have.
const std::map<std::string, std::set<std::string>>& KnownSteps() {
  static const std::map<std::string, std::set<std::string>> known = {
      {"sleep", {"seconds"}},
      {"wait", {"for", "count", "timeout"}},
      {"motion", {"kind", "seconds", "yaw", "pitch", "rate", "format"}},
      {"look",
       {"label", "yaw", "pitch", "seconds", "rate", "format", "x", "y", "width", "height", "rgba", "tolerance",
        "timeout"}},
      {"pose", {"format", "yaw", "pitch", "position"}},
      {"tracking-state", {"state"}},
      {"recenter", {}},
      {"framerate", {"fps"}},
      {"controller",
       {"id", "state", "pressed", "touched", "trackpad", "trigger", "position", "yaw", "pitch", "velocity",
        "acceleration"}},
      {"controllers", {"seconds", "rate", "ids"}},
      {"picture", {"label", "x", "y", "width", "height", "rgba", "tolerance", "timeout"}},
      {"raw", {"hex"}},
      {"message", {"type", "hex"}},
      {"close", {}},
      {"open", {}},
      {"shutdown", {}},
      {"expect-haptic", {"controller", "durationMicroseconds", "timeout"}},
      {"together", {"tracks"}},
      {"repeat", {"times", "steps"}},
  };
  return known;
}

void CheckSteps(const json& steps) {
  if (!steps.is_array()) throw std::runtime_error("steps must be a list");
  for (const json& step : steps) {
    const auto verb = step.at("do").get<std::string>();
    const auto found = KnownSteps().find(verb);
    if (found == KnownSteps().end()) throw std::runtime_error("unknown step \"" + verb + '"');
    for (const auto& [key, value] : step.items()) {
      if (key != "do" && !found->second.contains(key)) {
        throw std::runtime_error("step \"" + verb + "\" has no argument \"" + key + '"');
      }
    }
    if (verb == "repeat") CheckSteps(step.at("steps"));
    if (verb == "together") {
      for (const json& track : step.at("tracks")) CheckSteps(track);
    }
    if (step.contains("hex")) ParseHex(step.at("hex").get<std::string>());
  }
}

std::uint8_t HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
  const auto lower = static_cast<char>(std::tolower(static_cast<unsigned char>(digit)));
  if (lower >= 'a' && lower <= 'f') return static_cast<std::uint8_t>(lower - 'a' + 10);
  throw std::runtime_error(std::string("not a hexadecimal digit: ") + digit);
}

}  // namespace

Script ParseScript(const std::string& text) {
  const json root = json::parse(text);
  CheckSteps(root.at("steps"));
  return {root.at("steps").get<std::vector<json>>()};
}

Script LoadScript(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return ParseScript(text.str());
}

Bytes ParseHex(const std::string& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](char c) { return std::isspace(static_cast<unsigned char>(c)) == 0; });
  if (digits.size() % 2 != 0) throw std::runtime_error("odd number of hexadecimal digits");
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(HexDigit(digits[i]) << 4 | HexDigit(digits[i + 1])));
  }
  return bytes;
}

}  // namespace bench
