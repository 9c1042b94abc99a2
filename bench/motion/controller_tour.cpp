#include "motion/controller_tour.h"

#include <cmath>
#include <numbers>

namespace bench {

using namespace companion;

namespace {

constexpr ControllerButton kButtons[] = {ControllerButton::System, ControllerButton::ApplicationMenu,
                                         ControllerButton::Grip, ControllerButton::Trackpad, ControllerButton::Trigger};
constexpr double kRadius = 0.15;
constexpr double kTurnsPerSecond = 0.25;
constexpr double kRate = 2 * std::numbers::pi * kTurnsPerSecond;

// A button each second, down for the first half of it; nothing in the tour's remaining seconds.
std::uint64_t PressedAt(double seconds) {
  const auto second = static_cast<std::size_t>(seconds);
  if (second >= std::size(kButtons) || seconds - std::floor(seconds) >= 0.5) return 0;
  return ButtonBit(kButtons[second]);
}

void MoveOnCircle(ControllerRecord& record, float side, double seconds) {
  const double angle = kRate * seconds, c = std::cos(angle), s = std::sin(angle);
  const Position position{side * 0.3F + static_cast<float>(kRadius * c), 1.3F + static_cast<float>(kRadius * s), -0.6F};
  record.pose = ToPoseMatrix(EulerToQuaternion(0.2F, 0.3F * side, 0), position);
  record.velocity = {-kRadius * kRate * s, kRadius * kRate * c, 0};
  record.acceleration = {-kRadius * kRate * kRate * c, -kRadius * kRate * kRate * s, 0};
}

}  // namespace

ControllerRecord ControllerTour(std::uint32_t controllerId, float side, double seconds) {
  const double inTour = std::fmod(seconds, kControllerTourSeconds);
  ControllerRecord record;
  record.controllerId = controllerId;
  MoveOnCircle(record, side, seconds);
  record.pressedButtons = PressedAt(inTour);
  if (inTour >= 5 && inTour < 7) {
    record.touchedButtons = ButtonBit(ControllerButton::Trackpad);
    record.axes[0] = {static_cast<float>(std::cos(4 * inTour)), static_cast<float>(std::sin(4 * inTour))};
  }
  if (inTour >= 4) record.axes[1].x = static_cast<float>((1 - std::cos(std::numbers::pi * inTour)) / 2);
  return record;
}

}  // namespace bench
