#include "devices/haptic_pulse.h"

namespace ombrel {
namespace {

constexpr float kMicrosecondsPerSecond = 1'000'000.0F;

std::uint32_t Microseconds(std::int64_t counter, std::int64_t frequency) {
  const double seconds = static_cast<double>(counter) / static_cast<double>(frequency);
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(seconds * 1'000'000.0));
}

std::uint16_t DurationMicroseconds(float seconds) {
  constexpr float kLimit = 2147483648.0F;
  const float microseconds = seconds * kMicrosecondsPerSecond;
  if (!(microseconds > -kLimit && microseconds < kLimit)) return 0;
  return static_cast<std::uint16_t>(static_cast<std::int32_t>(microseconds));
}

}  // namespace

HapticPulse MakeHapticPulse(std::int32_t controllerId, std::int64_t counter, std::int64_t frequency,
                            float durationSeconds) {
  return {.controllerId = static_cast<std::uint32_t>(controllerId),
          .timestampMicroseconds = Microseconds(counter, frequency),
          .durationMicroseconds = DurationMicroseconds(durationSeconds),
          .reserved = 0};
}

}  // namespace ombrel
