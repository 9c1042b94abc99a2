#include "link/frame_pacing.h"

#include <algorithm>

namespace ombrel {
namespace {

double CountsToMs(std::int64_t counts, std::int64_t frequency) {
  return static_cast<double>(counts) / static_cast<double>(frequency) * 1000.0;
}

}  // namespace

double FramePeriodMs(std::uint32_t framesPerSecond) { return 1000.0F / static_cast<float>(framesPerSecond); }

std::uint32_t KeyedMutexTimeoutMs(double framePeriodMs) {
  return static_cast<std::uint32_t>(std::min(framePeriodMs, kLongestWaitMs));
}

double RemainingMs(double framePeriodMs, std::int64_t elapsed, std::int64_t frequency) {
  const double period = std::min(framePeriodMs, kLongestWaitMs);
  return std::clamp(period - CountsToMs(elapsed, frequency), 0.0, period);
}

std::uint32_t SleepPartMs(double remainingMs) {
  return remainingMs - 1.0 > 0.0 ? static_cast<std::uint32_t>(remainingMs - 1.0) : 0;
}

double SleepRestMs(double leftMs) { return std::clamp(leftMs - 1.0, 0.0, 1.0); }

bool IsSpinOver(std::int64_t elapsed, std::int64_t frequency, double leftMs) {
  return static_cast<float>(elapsed) >= static_cast<float>(static_cast<double>(frequency) * leftMs / 1000.0);
}

}  // namespace ombrel
