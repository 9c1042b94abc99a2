#include <windows.h>

#include <array>

#include "clocks.h"

namespace bench::speed {
namespace {

bool IsWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

// Wine counts a thread's time in ticks of 10 ms, its host in nanoseconds. So the host is asked, by a system call of
// Linux: clock_gettime(CLOCK_THREAD_CPUTIME_ID).
std::int64_t AskHost() {
  constexpr std::int64_t kClockGetTime = 228, kThreadClock = 3;
  std::array<std::int64_t, 2> time{};  // seconds, nanoseconds
  std::int64_t result = 0;
  asm volatile("syscall"
               : "=a"(result)
               : "a"(kClockGetTime), "D"(kThreadClock), "S"(time.data())
               : "rcx", "r11", "memory");
  return result == 0 ? time[0] * 1'000'000'000 + time[1] : 0;
}

std::int64_t AskWindows() {
  FILETIME created, ended, kernel, user;
  if (GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user) == 0) return 0;
  const auto units = [](const FILETIME& time) {
    return static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
  };
  return (units(kernel) + units(user)) * 100;
}

}  // namespace

std::int64_t ThreadNanoseconds() {
  static const bool isWine = IsWine();
  return isWine ? AskHost() : AskWindows();
}

}  // namespace bench::speed
