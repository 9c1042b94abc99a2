#include "runtime/pose_log.h"

#include "runtime/matching.h"

namespace bench {

void PoseLog::Add(const PoseRecord& record) {
  if (!recorder_.KeepsNothing()) {
    Keep(record);
  }
  for (const Listener& listener : listeners_) {
    listener(record);
  }
}

void PoseLog::Keep(const PoseRecord& record) {
  const std::lock_guard lock(mutex_);
  poses_.push_back(record);
  latest_[record.device] = record;
  ++counts_[record.device];
  ++total_;
  while (poses_.size() > memoryLimit_) {
    poses_.pop_front();
  }
}

std::size_t PoseLog::Count() const {
  const std::lock_guard lock(mutex_);
  return total_;
}

std::size_t PoseLog::Count(vr::TrackedDeviceIndex_t device) const {
  const std::lock_guard lock(mutex_);
  const auto found = counts_.find(device);
  return found == counts_.end() ? 0 : found->second;
}

std::optional<PoseRecord> PoseLog::Latest(vr::TrackedDeviceIndex_t device) const {
  const std::lock_guard lock(mutex_);
  const auto found = latest_.find(device);
  return found == latest_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<PoseRecord> PoseLog::All() const {
  const std::lock_guard lock(mutex_);
  return {poses_.begin(), poses_.end()};
}

std::vector<PoseRecord> PoseLog::All(vr::TrackedDeviceIndex_t device) const {
  const std::lock_guard lock(mutex_);
  return runtime::Matching(poses_, [device](const PoseRecord& record) { return record.device == device; });
}

void PoseLog::LimitMemory(std::size_t poses) {
  const std::lock_guard lock(mutex_);
  memoryLimit_ = poses;
}

void PoseLog::Listen(Listener listener) { listeners_.push_back(std::move(listener)); }

}  // namespace bench
