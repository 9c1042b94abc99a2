#pragma once

#include "sharing/counters.h"
#include "sharing/device_group.h"
#include "sharing/device_observer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace bench {

// The counters of a group while they count.
using AtomicCounters = CountersOf<std::atomic<std::int64_t>>;

// What all devices of a group have in common; one for each group, for the life of the process. Any thread.
class GroupState {
 public:
  // The observer in force; one that does nothing when there is none, or while this library itself calls Direct3D.
  [[nodiscard]] DeviceObserver& Observer() const;
  void SetObserver(DeviceObserver* observer) { observer_ = observer; }

  AtomicCounters counters;

 private:
  std::atomic<DeviceObserver*> observer_{nullptr};
};

[[nodiscard]] GroupState& StateOf(DeviceGroup group);

// While one exists, the Direct3D calls of its thread are this library's own and are not observed.
class InternalCalls {
 public:
  InternalCalls();
  ~InternalCalls();
  InternalCalls(const InternalCalls&) = delete;
  InternalCalls& operator=(const InternalCalls&) = delete;

  [[nodiscard]] static bool AreRunning();
};

// Counts one up now and down again when the last copy of the result goes.
[[nodiscard]] std::shared_ptr<void> CountAlive(std::atomic<std::int64_t>& counter);

}  // namespace bench
