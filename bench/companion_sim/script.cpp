#include "script.h"

#include <map>
#include <set>
#include <stdexcept>

#include "base/text_file.h"

namespace bench {
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
      {"controller", {"id", "pressed", "touched", "trackpad", "trigger", "position"}},
      {"controllers", {"seconds", "rate", "ids"}},
      {"picture", {"label", "x", "y", "width", "height", "rgba", "tolerance", "timeout"}},
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
  }
}

}  // namespace

Script ParseScript(const std::string& text) {
  const json root = json::parse(text);
  CheckSteps(root.at("steps"));
  return {root.at("steps").get<std::vector<json>>()};
}

Script LoadScript(const std::filesystem::path& path) { return ParseScript(ReadText(path)); }

}  // namespace bench
