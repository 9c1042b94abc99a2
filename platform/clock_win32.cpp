#include <windows.h>
// windows.h must come first.
#include <timeapi.h>

#include <algorithm>

#include "platform/clock.h"

namespace ombrel {

std::int64_t PerformanceCounter() {
  LARGE_INTEGER counter{};
  QueryPerformanceCounter(&counter);
  return counter.QuadPart;
}

std::int64_t PerformanceFrequency() {
  LARGE_INTEGER frequency{};
  QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

std::uint32_t TickMilliseconds() { return timeGetTime(); }

void SleepMs(std::uint32_t milliseconds) { Sleep(milliseconds); }

void RaiseTimerResolution() {
  TIMECAPS capabilities{};
  if (timeGetDevCaps(&capabilities, sizeof(capabilities)) != MMSYSERR_NOERROR) return;
  timeBeginPeriod(std::min(std::max(capabilities.wPeriodMin, 1U), capabilities.wPeriodMax));
}

}  // namespace ombrel
