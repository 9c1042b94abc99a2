#include <windows.h>
// windows.h must come first.
#include <timeapi.h>

#include <algorithm>

#include "platform/clock.h"

// Sleep, in units of 100 ns: the system's headers for user mode leave it out.
extern "C" __declspec(dllimport) LONG NTAPI NtDelayExecution(BOOLEAN alertable, LARGE_INTEGER* interval);

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

void SleepBelowMs(double milliseconds) {
  if (milliseconds <= 0.0) return;
  LARGE_INTEGER relative;
  relative.QuadPart = -static_cast<LONGLONG>(milliseconds * 10'000.0);  // units of 100 ns
  NtDelayExecution(FALSE, &relative);
}

void RaiseTimerResolution() {
  TIMECAPS capabilities{};
  if (timeGetDevCaps(&capabilities, sizeof(capabilities)) != MMSYSERR_NOERROR) return;
  timeBeginPeriod(std::min(std::max(capabilities.wPeriodMin, 1U), capabilities.wPeriodMax));
}

}  // namespace ombrel
