#include <chrono>
#include <thread>

#include "platform/clock.h"

namespace ombrel {
namespace {

std::chrono::nanoseconds SinceStart() { return std::chrono::steady_clock::now().time_since_epoch(); }

}  // namespace

std::int64_t PerformanceCounter() { return SinceStart().count(); }
std::int64_t PerformanceFrequency() { return 1'000'000'000; }

std::uint32_t TickMilliseconds() {
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(SinceStart()).count());
}

void SleepMs(std::uint32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

void SleepBelowMs(double milliseconds) {
  if (milliseconds <= 0.0) return;
  std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds));
}

void RaiseTimerResolution() {}

}  // namespace ombrel
