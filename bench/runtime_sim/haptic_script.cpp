#include "haptic_script.h"

#include <fstream>
#include <limits>
#include <stdexcept>

namespace bench {
namespace {

HapticStep ParseStep(const nlohmann::json& json) {
  HapticStep step;
  step.atSeconds = json.value("at", step.atSeconds);
  step.everySeconds = json.value("every", step.everySeconds);
  step.controller = json.value("controller", step.controller);
  step.durationSeconds = json.value("duration", step.durationSeconds);
  step.frequency = json.value("frequency", step.frequency);
  step.amplitude = json.value("amplitude", step.amplitude);
  return step;
}

std::vector<ActiveDevice> ControllersOf(const RuntimeSession& session) {
  std::vector<ActiveDevice> controllers = session.Devices();
  std::erase_if(controllers, [](const ActiveDevice& device) {
    return device.added.deviceClass != vr::TrackedDeviceClass_Controller;
  });
  return controllers;
}

}  // namespace

HapticScript::HapticScript(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const nlohmann::json json = nlohmann::json::parse(stream, nullptr, false);
  if (!json.is_array()) {
    throw std::runtime_error("the haptics file " + file.string() + " is not a list");
  }
  try {
    for (const nlohmann::json& step : json) {
      steps_.push_back(ParseStep(step));
    }
  } catch (const nlohmann::json::exception& error) {
    throw std::runtime_error("the haptics file " + file.string() + ": " + error.what());
  }
}

void HapticScript::Advance(double seconds, FakeRuntime& runtime, const RuntimeSession& session) {
  if (steps_.empty()) {
    return;
  }
  const std::vector<ActiveDevice> controllers = ControllersOf(session);
  for (HapticStep& step : steps_) {
    if (seconds < step.atSeconds || step.controller >= controllers.size()) {
      continue;
    }
    const vr::PropertyContainerHandle_t container = controllers[step.controller].container;
    const auto component = runtime.Input().Find(container, "/output/haptic");
    runtime.Host().PushHaptic(container, component ? component->handle : vr::k_ulInvalidInputComponentHandle,
                              step.durationSeconds, step.frequency, step.amplitude);
    ++sent_;
    step.atSeconds = step.everySeconds > 0.0 ? seconds + step.everySeconds : std::numeric_limits<double>::infinity();
  }
}

}  // namespace bench
