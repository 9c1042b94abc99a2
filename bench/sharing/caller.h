#pragma once

#include "attachment.h"
#include "device_state.h"

#include <memory>
#include <optional>

namespace bench {

// Who makes a Direct3D call that one of our replacements received: one of our devices, or somebody else, whose
// call passes through untouched. This library's own calls count as somebody else's.
class Caller {
 public:
  // A device or an immediate context.
  explicit Caller(const void* object) : device_(InternalCalls::AreRunning() ? nullptr : Devices().Find(object)) {}

  [[nodiscard]] const std::shared_ptr<DeviceState>& Device() const { return device_; }
  [[nodiscard]] DeviceObserver& Observer() const;

  // The observer's answer to a call that makes an object, if it has one; the output is then null.
  template <class Object>
  [[nodiscard]] std::optional<HRESULT> Answer(DeviceCall call, Object** output) const {
    const auto answer = Observer().Answer(call);
    if (answer && output != nullptr) *output = nullptr;
    return answer;
  }

  // Counts the object that a call made, for as long as it exists. Gives `result` back.
  template <class Object>
  HRESULT Count(HRESULT result, Object** output, std::atomic<std::int64_t> AtomicCounters::*counter) const {
    if (device_ == nullptr || FAILED(result) || output == nullptr || *output == nullptr) return result;
    Attach(*output, kCountName, CountAlive(device_->Group().counters.*counter));
    return result;
  }

 private:
  static constexpr GUID kCountName = {0x5d0c1f2e, 0x7a34, 0x4c0e, {0x9b, 0x61, 0x2f, 0x8e, 0x11, 0x6d, 0x40, 0x03}};

  std::shared_ptr<DeviceState> device_;
};

inline DeviceObserver& Caller::Observer() const {
  static DeviceObserver nobody;
  return device_ == nullptr ? nobody : device_->Group().Observer();
}

}  // namespace bench
