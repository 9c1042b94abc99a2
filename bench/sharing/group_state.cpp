#include "group_state.h"

namespace bench {

namespace {

thread_local int internalDepth = 0;

}  // namespace

DeviceObserver& GroupState::Observer() const {
  static DeviceObserver nobody;
  DeviceObserver* const observer = InternalCalls::AreRunning() ? nullptr : observer_.load();
  return observer == nullptr ? nobody : *observer;
}

// Never destroyed: devices may outlive the program's static objects.
GroupState& StateOf(DeviceGroup group) {
  static GroupState& own = *new GroupState;
  static GroupState& intercepted = *new GroupState;
  return group == DeviceGroup::kOwn ? own : intercepted;
}

InternalCalls::InternalCalls() { ++internalDepth; }

InternalCalls::~InternalCalls() { --internalDepth; }

bool InternalCalls::AreRunning() { return internalDepth != 0; }

std::shared_ptr<void> CountAlive(std::atomic<std::int64_t>& counter) {
  ++counter;
  return {&counter, [](void* counted) { --*static_cast<std::atomic<std::int64_t>*>(counted); }};
}

Counters ReadCounters(DeviceGroup group) {
  const AtomicCounters& counters = StateOf(group).counters;
  return {.liveDevices = counters.liveDevices,
          .liveTextures = counters.liveTextures,
          .liveSharedTextures = counters.liveSharedTextures,
          .liveBuffers = counters.liveBuffers,
          .liveViews = counters.liveViews,
          .liveShaders = counters.liveShaders,
          .liveStates = counters.liveStates,
          .heldMutexes = counters.heldMutexes,
          .acquired = counters.acquired,
          .timedOut = counters.timedOut,
          .abandoned = counters.abandoned,
          .uploads = counters.uploads,
          .downloads = counters.downloads};
}

}  // namespace bench
