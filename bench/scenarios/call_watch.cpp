#include "call_watch.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "base/clock.h"

namespace bench::scenarios {
namespace {

// On a busy machine a thread may not run for so long; and what Direct3D may take in software.
constexpr double kSchedulingMs = 1000;
constexpr double kGraphicsMs = 8000;
// So long after its limit a call counts as one that never returns.
constexpr double kHangMs = 20'000;
constexpr std::chrono::milliseconds kLookInterval{50};

constexpr std::array kBounds{
    CallBound{"Init", 0, true},
    CallBound{"Cleanup", 2400},
    CallBound{"RunFrame", 0},
    CallBound{"FreeLibrary", 0},
    CallBound{"Activate", 2000, true},
    CallBound{"Deactivate", 0},
    CallBound{"GetComponent", 0},
    CallBound{"GetPose", 0},
    CallBound{"DebugRequest", 0},
    CallBound{"EnterStandby", 0},
    CallBound{"GetWindowBounds", 0},
    CallBound{"ComputeDistortion", 0},
    CallBound{"CreateSwapTextureSet", 0, true},
    CallBound{"DestroySwapTextureSet", 0, true},
    CallBound{"DestroyAllSwapTextureSets", 0, true},
    CallBound{"GetNextSwapTextureSetIndex", 0},
    CallBound{"SubmitLayer", 0},
    CallBound{"Present (layers)", 2000},
    CallBound{"PostPresent", 1000},
    CallBound{"GetFrameTiming", 0},
    CallBound{"Present (texture)", 2000},
    CallBound{"WaitForPresent", 1000},
    CallBound{"GetTimeSinceLastVsync", 0},
};

double Milliseconds(std::int64_t beginTicks) { return TicksToMilliseconds(NowTicks() - beginTicks); }

std::string Describe(const CallBound& bound, double ms, const char* what) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), "%s %s %.0f ms; it may wait %.0f ms, and its limit here is %.0f ms",
                bound.call, what, ms, bound.waitsMs, CallWatch::LimitMs(bound));
  return text.data();
}

}  // namespace

std::span<const CallBound> CallBounds() { return kBounds; }

double CallWatch::LimitMs(const CallBound& bound) {
  return bound.waitsMs + kSchedulingMs + (bound.usesGraphics ? kGraphicsMs : 0);
}

CallWatch::CallWatch() : thread_([this](const std::stop_token& end) { Look(end); }) {}

std::list<CallWatch::Running>::iterator CallWatch::Begin(const char* call) {
  const auto* bound = std::ranges::find(kBounds, std::string(call), &CallBound::call);
  if (bound == kBounds.end()) throw std::logic_error(std::string(call) + " has no bound");
  const std::lock_guard lock(mutex_);
  return running_.insert(running_.end(), {bound, NowTicks()});
}

void CallWatch::End(std::list<Running>::iterator running) {
  const double ms = Milliseconds(running->beginTicks);
  const std::lock_guard lock(mutex_);
  Seen& seen = seen_[running->bound->call];
  seen.worstMs = std::max(seen.worstMs, ms);
  ++seen.calls;
  if (ms > LimitMs(*running->bound)) lateCalls_.push_back(Describe(*running->bound, ms, "took"));
  running_.erase(running);
}

void CallWatch::Look(const std::stop_token& end) {
  std::unique_lock lock(mutex_);
  while (!ended_.wait_for(lock, end, kLookInterval, [&end] { return end.stop_requested(); })) {
    for (Running& running : running_) LookAt(running);
  }
}

void CallWatch::LookAt(Running& running) {
  const double ms = Milliseconds(running.beginTicks);
  if (ms <= LimitMs(*running.bound)) return;
  if (!running.isLate) {
    running.isLate = true;
    std::printf("      %s\n", Describe(*running.bound, ms, "has not come back after").c_str());
    std::fflush(stdout);
  }
  if (ms <= LimitMs(*running.bound) + kHangMs) return;
  std::printf("FAIL  %s hangs: ending this program\n", running.bound->call);
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), kHangExitCode);
}

std::vector<std::string> CallWatch::TakeLateCalls() {
  const std::lock_guard lock(mutex_);
  return std::exchange(lateCalls_, {});
}

void CallWatch::PrintTable() const {
  const std::lock_guard lock(mutex_);
  std::printf("%-27s %12s %14s %10s\n", "call", "may wait ms", "worst seen ms", "calls");
  for (const CallBound& bound : kBounds) {
    const auto seen = seen_.find(bound.call);
    if (seen == seen_.end()) {
      std::printf("%-27s %12.0f %14s %10d\n", bound.call, bound.waitsMs, "not called", 0);
    } else {
      std::printf("%-27s %12.0f %14.1f %10zu\n", bound.call, bound.waitsMs, seen->second.worstMs, seen->second.calls);
    }
  }
}

bool CallWatch::AppendCsv(const std::string& file) const {
  const std::lock_guard lock(mutex_);
  std::FILE* out = std::fopen(file.c_str(), "a");
  if (out == nullptr) return false;
  for (const CallBound& bound : kBounds) {
    const auto seen = seen_.find(bound.call);
    if (seen == seen_.end()) continue;
    std::fprintf(out, "%s,%.0f,%.0f,%.1f,%zu\n", bound.call, bound.waitsMs, LimitMs(bound), seen->second.worstMs,
                 seen->second.calls);
  }
  return std::fclose(out) == 0;
}

}  // namespace bench::scenarios
