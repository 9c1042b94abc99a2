#include "companion/controller_record.h"

#include <algorithm>

#include "companion/messages.h"

namespace companion {
namespace {

void Put(const Axis& axis, float* pair) {
  pair[0] = axis.x;
  pair[1] = axis.y;
}

Axis GetAxis(const float* pair) { return {pair[0], pair[1]}; }

}  // namespace

Bytes EncodeControllerUpdate(const ControllerRecord& record) {
  OmbrelControllerUpdate update{};
  update.controllerId = record.controllerId;
  update.trackingState = record.trackingState;
  std::copy(record.pose.begin(), record.pose.end(), update.pose);
  update.packetNumber = record.packetNumber;
  update.pressedButtons = record.pressedButtons;
  update.touchedButtons = record.touchedButtons;
  Put(record.axes[0], update.trackpad);
  Put(record.axes[1], update.trigger);
  for (std::size_t i = 0; i < 3; ++i) Put(record.axes[2 + i], update.unusedAxes + 2 * i);
  std::copy(record.acceleration.begin(), record.acceleration.end(), update.acceleration);
  std::copy(record.velocity.begin(), record.velocity.end(), update.velocity);
  return EncodeMessage(MessageType::ControllerUpdate, AsBytes(update));
}

std::optional<ControllerRecord> DecodeControllerUpdate(std::span<const std::uint8_t> payload) {
  const auto update = ReadAs<OmbrelControllerUpdate>(payload);
  if (!update) return std::nullopt;
  ControllerRecord record;
  record.controllerId = update->controllerId;
  record.trackingState = update->trackingState;
  std::copy(std::begin(update->pose), std::end(update->pose), record.pose.begin());
  record.packetNumber = update->packetNumber;
  record.pressedButtons = update->pressedButtons;
  record.touchedButtons = update->touchedButtons;
  record.axes[0] = GetAxis(update->trackpad);
  record.axes[1] = GetAxis(update->trigger);
  for (std::size_t i = 0; i < 3; ++i) record.axes[2 + i] = GetAxis(update->unusedAxes + 2 * i);
  std::copy(std::begin(update->acceleration), std::end(update->acceleration), record.acceleration.begin());
  std::copy(std::begin(update->velocity), std::end(update->velocity), record.velocity.begin());
  return record;
}

}  // namespace companion
