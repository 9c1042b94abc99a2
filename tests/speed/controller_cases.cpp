#include "controller_cases.h"

#include "context/driver_context.h"

namespace ombrel::test {

ControllerCase::ControllerCase(std::uint32_t controllers) {
  // The quiet runtime offers inputs alone, which is all that records need.
  static_cast<void>(Context().Init(&context_));
  for (std::uint32_t id = 0; id < controllers; ++id) {
    registry_.Add(id, std::make_unique<ControllerDevice>(nullptr, &host_, static_cast<std::int32_t>(id))).Activate(id);
  }
}

ControllerCase::~ControllerCase() { Context().Clear(); }

std::vector<std::byte> ControllerCase::Record(std::uint32_t controller, int turn) {
  const auto value = static_cast<float>(turn);
  ControllerUpdate record{};
  record.controllerId = controller;
  record.pose = {0.8F, -0.6F, 0.0F, 0.3F + 0.1F * value, 0.6F, 0.8F, 0.0F, 1.2F, 0.0F, 0.0F, 1.0F, -0.4F};
  record.state.pressedButtons = std::uint64_t{1} << 33;
  record.state.axes[0] = {0.25F, 0.5F};
  record.state.axes[1] = {0.5F + 0.25F * value, 0.0F};
  record.velocity = {0.1, 0.2, 0.3};
  const auto bytes = RecordBytes(record);
  return {bytes.begin(), bytes.end()};
}

}  // namespace ombrel::test
