#include "controller_step.h"

#include <map>
#include <numbers>
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
    if (button.is_number_unsigned() && button.get<unsigned>() < 64) {
      mask |= std::uint64_t{1} << button.get<unsigned>();
      continue;
    }
    const auto found = known.find(button.get<std::string>());
    if (found == known.end()) throw std::runtime_error("unknown button " + button.dump());
    mask |= ButtonBit(found->second);
  }
  return mask;
}

float Radians(const json& step, const char* key) {
  return static_cast<float>(step.value(key, 0.0) * std::numbers::pi / 180);
}

}  // namespace

ControllerRecord ParseController(const json& step) {
  ControllerRecord record;
  record.controllerId = step.at("id").get<std::uint32_t>();
  record.trackingState = step.value("state", 0U);
  const auto position = step.value("position", std::array<float, 3>{0, 1.2F, -0.5F});
  record.pose = ToPoseMatrix(YawPitchToQuaternion({Radians(step, "yaw"), Radians(step, "pitch")}),
                             {position[0], position[1], position[2]});
  record.pressedButtons = ButtonMask(step.value("pressed", json::array()));
  record.touchedButtons = ButtonMask(step.value("touched", json::array()));
  const auto trackpad = step.value("trackpad", std::array<float, 2>{});
  record.axes[0] = {trackpad[0], trackpad[1]};
  record.axes[1].x = step.value("trigger", 0.0F);
  record.velocity = step.value("velocity", std::array<double, 3>{});
  record.acceleration = step.value("acceleration", std::array<double, 3>{});
  return record;
}

}  // namespace bench
