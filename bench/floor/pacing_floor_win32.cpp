#include "floor/pacing_floor.h"

#include <windows.h>

namespace bench::floor {
namespace {

std::int64_t Now() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

std::int64_t Frequency() {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

}  // namespace

PacingFloor::PacingFloor(double periodMs)
    : frequency_(Frequency()),
      period_(static_cast<std::int64_t>(periodMs * static_cast<double>(frequency_) / 1000.0)),
      last_(Now()) {}

void PacingFloor::Wait() {
  const std::int64_t end = last_ + period_;
  const std::int64_t sleepMs = (end - Now()) * 1000 / frequency_ - 1;
  if (sleepMs > 0) Sleep(static_cast<DWORD>(sleepMs));
  while (Now() < end) {
  }
  last_ = Now();
}

}  // namespace bench::floor
