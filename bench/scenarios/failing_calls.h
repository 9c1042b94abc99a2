#pragma once

#include <atomic>
#include <climits>
#include <cstdint>
#include <optional>

#include "base/clock.h"
#include "sharing/device_observer.h"
#include "sharing/sharing_device.h"

namespace bench::scenarios {

// Observes the driver's Direct3D devices for as long as it lives. The most derived class, so that no call reaches an
// observer that is under construction or half destroyed.
template <typename Observer>
class Watching final : public Observer {
 public:
  Watching() { SetObserver(DeviceGroup::kIntercepted, this); }
  ~Watching() override { SetObserver(DeviceGroup::kIntercepted, nullptr); }
  Watching(const Watching&) = delete;
  Watching& operator=(const Watching&) = delete;
};

// Fault injection: calls of the driver's Direct3D devices fail with DXGI_ERROR_DEVICE_REMOVED, with or without
// GetDeviceRemovedReason saying the same. The methods may be called at any time on one thread; the calls come on any.
class FailingCalls : public DeviceObserver {
 public:
  // All calls of one kind from now on.
  void FailKind(DeviceCall call) { kind_ = static_cast<int>(call); }
  // All calls but the next `count`.
  void FailAfter(int count) {
    seen_ = 0;
    failAfter_ = count;
  }
  // The same, and the device was removed: it says so, and the next `attempts` to make another fail, too. The one that is
  // made then works.
  void RemoveAfter(int count, int attempts) {
    attemptsLeft_ = attempts;
    FailAfter(count);
    isRemoved_ = true;
  }
  // When the device that works was there; 0 before.
  [[nodiscard]] std::int64_t RemadeTicks() const { return remadeTicks_; }
  // Nothing fails any more; counts anew.
  void Allow() {
    isRemoved_ = false;
    kind_ = kNone;
    failAfter_ = INT_MAX;
    seen_ = 0;
    failed_ = 0;
  }
  [[nodiscard]] int Seen() const { return seen_; }
  [[nodiscard]] int Failed() const { return failed_; }

  [[nodiscard]] std::optional<HRESULT> Answer(DeviceCall call) override {
    if (call == DeviceCall::kGetDeviceRemovedReason) return AnswerReason();
    if (isNew_.exchange(false)) remadeTicks_ = NowTicks();
    const bool fails = seen_++ >= failAfter_ || static_cast<int>(call) == kind_;
    if (!fails || IsNewDevice(call)) return std::nullopt;
    ++failed_;
    return DXGI_ERROR_DEVICE_REMOVED;
  }

 private:
  static constexpr int kNone = -1;

  // Not counted: it may come at any time.
  [[nodiscard]] std::optional<HRESULT> AnswerReason() const {
    if (isRemoved_ && seen_ >= failAfter_) return DXGI_ERROR_DEVICE_REMOVED;
    return std::nullopt;
  }
  [[nodiscard]] bool IsNewDevice(DeviceCall call) {
    if (!isRemoved_ || call != DeviceCall::kCreateDevice || attemptsLeft_-- > 0) return false;
    Allow();
    remadeTicks_ = 0;
    isNew_ = true;
    return true;
  }

  std::atomic<bool> isRemoved_ = false;
  std::atomic<int> attemptsLeft_ = 0;
  std::atomic<bool> isNew_ = false;
  std::atomic<std::int64_t> remadeTicks_ = 0;
  std::atomic<int> kind_ = kNone;
  std::atomic<int> failAfter_ = INT_MAX;
  std::atomic<int> seen_ = 0;
  std::atomic<int> failed_ = 0;
};

}  // namespace bench::scenarios
