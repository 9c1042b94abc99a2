#include "resources.h"

#include <windows.h>
// windows.h must come first.
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "base/clock.h"
#include "base/owned_handle.h"
#include "driver_life.h"
#include "handle_count.h"
#include "sharing/counters.h"
#include "sharing/import_patch.h"

namespace bench::scenarios {
namespace {

constexpr int kSamples = 40;

std::int64_t CountThreads() {
  std::int64_t count = 0;
  const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Thread32First(snapshot.Get(), &entry); more != 0; more = Thread32Next(snapshot.Get(), &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  return count;
}

std::int64_t CountGraphics() {
  const Counters live = ReadCounters(DeviceGroup::kIntercepted);
  return live.liveDevices + live.liveTextures + live.liveBuffers + live.liveViews + live.liveShaders + live.liveStates +
         live.heldMutexes;
}

std::int64_t ReadPrivateBytes() {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
  return static_cast<std::int64_t>(memory.PagefileUsage);
}

std::atomic<std::int64_t> liveBlocks = 0;

void* CountedMalloc(std::size_t size) {
  void* block = std::malloc(size);
  if (block != nullptr) ++liveBlocks;
  return block;
}

void* CountedCalloc(std::size_t count, std::size_t size) {
  void* block = std::calloc(count, size);
  if (block != nullptr) ++liveBlocks;
  return block;
}

void* CountedRealloc(void* block, std::size_t size) {
  void* moved = std::realloc(block, size);
  if (block == nullptr && moved != nullptr) ++liveBlocks;
  return moved;
}

void CountedFree(void* block) {
  if (block != nullptr) --liveBlocks;
  std::free(block);
}

template <typename Function>
bool Replace(void* module, const char* name, Function* replacement) {
  return ReplaceImport(static_cast<HMODULE>(module), "msvcrt.dll", name, reinterpret_cast<void*>(replacement));
}

}  // namespace

Held ReadHeld() {
  return {CountThreads(), CountOwnHandles(), CountGraphics(), ReadPrivateBytes(), liveBlocks - DriverLife::SetsMade()};
}

void WatchHeap(void* module) {
  if (!Replace(module, "malloc", &CountedMalloc) || !Replace(module, "free", &CountedFree)) {
    throw std::runtime_error("the driver's heap cannot be watched");
  }
  // Not every build uses these.
  static_cast<void>(Replace(module, "calloc", &CountedCalloc));
  static_cast<void>(Replace(module, "realloc", &CountedRealloc));
}

void Growth::Sample(int round) {
  const int warmUp = std::max(2, rounds_ / 4);
  const int step = std::max(1, (rounds_ - warmUp) / kSamples);
  if (round < warmUp || ((round - warmUp) % step != 0 && round != rounds_)) return;
  points_.push_back({round, ReadHeld()});
}

// The median of the slopes between each two points: a texture more or less that is alive at some of them moves it little.
double Growth::BytesPerRound() const {
  std::vector<double> slopes;
  for (std::size_t later = 1; later < points_.size(); ++later) {
    for (std::size_t earlier = 0; earlier < later; ++earlier) {
      const auto bytes = static_cast<double>(points_[later].held.privateBytes - points_[earlier].held.privateBytes);
      slopes.push_back(bytes / (points_[later].round - points_[earlier].round));
    }
  }
  if (slopes.empty()) return 0;
  const auto middle = slopes.begin() + static_cast<std::ptrdiff_t>(slopes.size() / 2);
  std::nth_element(slopes.begin(), middle, slopes.end());
  return *middle;
}

std::int64_t Growth::Rise(std::int64_t Held::*value) const {
  const auto lowest = [value](auto begin, auto end) {
    return std::min_element(
               begin, end,
               [value](const Point& one, const Point& other) { return one.held.*value < other.held.*value; })
               ->held.*
           value;
  };
  const auto half = points_.begin() + static_cast<std::ptrdiff_t>(points_.size() / 2);
  return lowest(half, points_.end()) - lowest(points_.begin(), half);
}

void Growth::Judge(ScenarioRun& run, std::int64_t allowedBytes) const {
  if (!run.Check(points_.size() > 3, "there are samples")) return;
  const Held& warm = points_.front().held;
  const Held& end = points_.back().held;
  const auto number = [](std::int64_t value) { return static_cast<long long>(value); };
  run.Figure(
      "%d rounds, after warm-up and at the end: threads %lld %lld, handles %lld %lld, Direct3D objects %lld %lld",
      rounds_, number(warm.threads), number(end.threads), number(warm.handles), number(end.handles),
      number(warm.graphics), number(end.graphics));
  run.Figure("driver's blocks %+lld, private KiB %lld %lld, slope %.1f bytes a round",
             number(end.driverBlocks - warm.driverBlocks), number(warm.privateBytes / 1024),
             number(end.privateBytes / 1024), BytesPerRound());
  run.Compare("threads", warm.threads, end.threads);
  run.Compare("handles", warm.handles, end.handles);
  run.Compare("private memory, KiB", warm.privateBytes / 1024, end.privateBytes / 1024);
  run.Compare("blocks of the driver's heap", 0, end.driverBlocks - warm.driverBlocks);
  // One of the system's own may come late; one for each round would be many more.
  run.Check(Rise(&Held::threads) <= 1, "threads do not grow");
  run.Check(Rise(&Held::handles) <= 2, "handles do not grow");
  run.Check(Rise(&Held::graphics) <= 0, "Direct3D objects do not grow");
  run.Check(Rise(&Held::driverBlocks) <= 0, "the driver's heap does not grow");
  run.Check(Rise(&Held::privateBytes) <= allowedBytes, "memory does not grow");
}

void PlayRounds(ScenarioRun& run, Growth& growth, int rounds, const std::function<void()>& play) {
  constexpr double kLongestSeconds = 1200;
  const std::int64_t begin = NowTicks();
  for (int round = 1; round <= rounds && run.Failures().empty(); ++round) {
    play();
    growth.Sample(round);
    if (TicksToSeconds(NowTicks() - begin) > kLongestSeconds) {
      run.Skip("rounds " + std::to_string(round + 1) + " to " + std::to_string(rounds) + ": they would take too long");
      return;
    }
  }
}

}  // namespace bench::scenarios
