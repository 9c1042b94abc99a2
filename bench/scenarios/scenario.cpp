#include "scenario.h"

#include <array>
#include <cstdarg>

namespace bench::scenarios {

void ScenarioRun::Figure(const char* format, ...) {
  std::array<char, 512> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  if (!figures_.empty()) figures_ += ", ";
  figures_ += text.data();
}

bool ScenarioRun::Check(bool holds, const std::string& what) {
  if (!holds) failures_.push_back(what);
  return holds;
}

std::vector<Scenario> AllScenarios() {
  std::vector<Scenario> all;
  for (const auto group : {KillScenarios(), PipeScenarios(), GraphicsScenarios(), MemoryScenarios(), RateScenarios(),
                           ActivationScenarios(), CleanupScenarios(), GrowthScenarios(), ControllerScenarios()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

}  // namespace bench::scenarios
