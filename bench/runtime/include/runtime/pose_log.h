#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

// One TrackedDevicePoseUpdated call.
struct PoseRecord {
  vr::TrackedDeviceIndex_t device = vr::k_unTrackedDeviceIndexInvalid;
  vr::DriverPose_t pose{};
  std::uint32_t structSize = 0;  // as the driver gave it; the pose is zero unless it is 280
  std::int64_t ticks = 0;        // performance counter on arrival
  std::uint32_t threadId = 0;
};

// Keeps every pose that the driver sent, unless nothing is kept. Callable from any thread.
class PoseLog {
 public:
  using Listener = std::function<void(const PoseRecord&)>;

  explicit PoseLog(const CallRecorder& recorder) : recorder_(recorder) {}

  void Add(const PoseRecord& record);

  // Poses ever received; with a device, only that one's.
  [[nodiscard]] std::size_t Count() const;
  [[nodiscard]] std::size_t Count(vr::TrackedDeviceIndex_t device) const;
  [[nodiscard]] std::optional<PoseRecord> Latest(vr::TrackedDeviceIndex_t device) const;
  // Oldest first, as far as they are kept.
  [[nodiscard]] std::vector<PoseRecord> All() const;
  [[nodiscard]] std::vector<PoseRecord> All(vr::TrackedDeviceIndex_t device) const;
  void LimitMemory(std::size_t poses);

  // Called for every later pose on the thread that sends it, without a lock held. Listeners are
  // added before the driver sends poses and stay for the log's life.
  void Listen(Listener listener);

 private:
  void Keep(const PoseRecord& record);

  const CallRecorder& recorder_;
  mutable std::mutex mutex_;
  std::deque<PoseRecord> poses_;
  std::map<vr::TrackedDeviceIndex_t, PoseRecord> latest_;
  std::map<vr::TrackedDeviceIndex_t, std::size_t> counts_;
  std::vector<Listener> listeners_;
  std::size_t total_ = 0;
  std::size_t memoryLimit_ = SIZE_MAX;
};

}  // namespace bench
