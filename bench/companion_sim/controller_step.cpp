#include "controller_step.h"

#include <map>
#include <stdexcept>
#include <string>

namespace bench {

using namespace companion;

namespace {

using nlohmann::json;

std::uint64_t ButtonMask(const json& buttons) {
  static const std::map<std::string, ControllerButton> known = {
      {"system", ControllerButton::System},   {"menu", ControllerButton::ApplicationMenu},
      {"grip", ControllerButton::Grip},       {"trackpad", ControllerButton::Trackpad},
      {"trigger", ControllerButton::Trigger},
  };
  std::uint64_t mask = 0;
  for (const json& button : buttons) {
    const auto found = known.find(button.get<std::string>());
    if (found == known.end()) throw std::runtime_error("unknown button " + button.dump());
    mask |= ButtonBit(found->second);
  }
  return mask;
}

}  // namespace

ControllerRecord ParseController(const json& step) {
  ControllerRecord record;
  record.controllerId = step.at("id").get<std::uint32_t>();
  const auto position = step.value("position", std::array<float, 3>{0, 1.2F, -0.5F});
  record.pose = ToPoseMatrix(Quat{}, {position[0], position[1], position[2]});
  record.pressedButtons = ButtonMask(step.value("pressed", json::array()));
  record.touchedButtons = ButtonMask(step.value("touched", json::array()));
  const auto trackpad = step.value("trackpad", std::array<float, 2>{});
  record.axes[0] = {trackpad[0], trackpad[1]};
  record.axes[1].x = step.value("trigger", 0.0F);
  return record;
}

}  // namespace bench
