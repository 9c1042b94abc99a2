#pragma once

#include <atomic>
#include <climits>
#include <optional>

#include "sharing/device_observer.h"
#include "sharing/sharing_device.h"

namespace bench::scenarios {

// Makes calls of the driver's Direct3D devices fail as those of a device that was removed do. Watches the devices for as
// long as it lives. The methods may be called at any time on one thread; the calls come on any.
class FailingCalls : public DeviceObserver {
 public:
  FailingCalls() { SetObserver(DeviceGroup::kIntercepted, this); }
  ~FailingCalls() override { SetObserver(DeviceGroup::kIntercepted, nullptr); }
  FailingCalls(const FailingCalls&) = delete;
  FailingCalls& operator=(const FailingCalls&) = delete;

  // All calls of one kind from now on.
  void FailKind(DeviceCall call) { kind_ = static_cast<int>(call); }
  // All calls but the next `count`.
  void FailAfter(int count) {
    seen_ = 0;
    failAfter_ = count;
  }
  // Nothing fails any more; counts anew.
  void Allow() {
    kind_ = kNone;
    failAfter_ = INT_MAX;
    seen_ = 0;
    failed_ = 0;
  }
  [[nodiscard]] int Seen() const { return seen_; }
  [[nodiscard]] int Failed() const { return failed_; }

  [[nodiscard]] std::optional<HRESULT> Answer(DeviceCall call) override {
    if (seen_++ < failAfter_ && static_cast<int>(call) != kind_) return std::nullopt;
    ++failed_;
    return DXGI_ERROR_DEVICE_REMOVED;
  }

 private:
  static constexpr int kNone = -1;
  std::atomic<int> kind_ = kNone;
  std::atomic<int> failAfter_ = INT_MAX;
  std::atomic<int> seen_ = 0;
  std::atomic<int> failed_ = 0;
};

}  // namespace bench::scenarios
