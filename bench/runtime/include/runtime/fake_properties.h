#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

// One entry of one WritePropertyBatch call.
struct PropertyWriteRecord {
  vr::PropertyContainerHandle_t container = 0;
  vr::ETrackedDeviceProperty property = {};
  vr::PropertyTypeTag_t tag = 0;
  vr::EPropertyWriteType writeType = {};
  std::vector<std::uint8_t> bytes;  // as long as the size that the driver gave
  std::uint32_t call = 0;           // number of the WritePropertyBatch call, from 0
  std::uint32_t entryInCall = 0;
  std::uint32_t entriesInCall = 0;
  vr::ETrackedPropertyError result = {};

  // The value as a T; T must be as large as the bytes, or nothing comes back.
  template <typename T>
  [[nodiscard]] std::optional<T> As() const {
    if (bytes.size() != sizeof(T)) {
      return std::nullopt;
    }
    T value{};
    std::memcpy(&value, bytes.data(), sizeof(T));
    return value;
  }
  // The value as text without its terminating zero; nothing if it has none.
  [[nodiscard]] std::optional<std::string> AsString() const;
};

// IVRProperties_001: one container per tracked device. Containers exist for the device indices that
// the runtime can give out; writes to any other container are recorded and answered
// TrackedProp_InvalidDevice. Callable from any thread.
class FakeProperties : public vr::IVRProperties {
 public:
  explicit FakeProperties(CallRecorder& recorder) : recorder_(recorder) {}

  // The container of a device; k_ulInvalidPropertyContainer for an index beyond the runtime's limit.
  [[nodiscard]] static vr::PropertyContainerHandle_t ContainerOf(vr::TrackedDeviceIndex_t device);

  // Every entry ever written, in order; with a container, only that one's.
  [[nodiscard]] std::vector<PropertyWriteRecord> Writes() const;
  [[nodiscard]] std::vector<PropertyWriteRecord> Writes(vr::PropertyContainerHandle_t container) const;
  // The value that stands now.
  [[nodiscard]] std::optional<PropertyWriteRecord> Find(vr::PropertyContainerHandle_t container,
                                                        vr::ETrackedDeviceProperty property) const;
  template <typename T>
  [[nodiscard]] std::optional<T> Get(vr::PropertyContainerHandle_t container,
                                     vr::ETrackedDeviceProperty property) const {
    const auto found = Find(container, property);
    return found ? found->As<T>() : std::nullopt;
  }
  [[nodiscard]] std::optional<std::string> GetString(vr::PropertyContainerHandle_t container,
                                                     vr::ETrackedDeviceProperty property) const;
  // Every later write of that property is refused with `error`; the stored value stays.
  void FailWrite(vr::ETrackedDeviceProperty property, vr::ETrackedPropertyError error);

  // Called ahead of each entry on the driver's thread, without a lock; may block. Set before the driver starts.
  std::function<void(vr::PropertyContainerHandle_t, const vr::PropertyWrite_t&)> onWrite;

  vr::ETrackedPropertyError ReadPropertyBatch(vr::PropertyContainerHandle_t ulContainerHandle,
                                              vr::PropertyRead_t* pBatch, uint32_t unBatchEntryCount) override;
  vr::ETrackedPropertyError WritePropertyBatch(vr::PropertyContainerHandle_t ulContainerHandle,
                                               vr::PropertyWrite_t* pBatch, uint32_t unBatchEntryCount) override;
  const char* GetPropErrorNameFromEnum(vr::ETrackedPropertyError error) override;
  vr::PropertyContainerHandle_t TrackedDeviceToPropertyContainer(vr::TrackedDeviceIndex_t nDevice) override;

 private:
  using Key = std::pair<vr::PropertyContainerHandle_t, vr::ETrackedDeviceProperty>;

  vr::ETrackedPropertyError Store(const PropertyWriteRecord& write);
  vr::ETrackedPropertyError ReadOne(vr::PropertyContainerHandle_t container, vr::PropertyRead_t& read);

  CallRecorder& recorder_;
  mutable std::mutex mutex_;
  std::vector<PropertyWriteRecord> writes_;
  std::map<Key, PropertyWriteRecord> values_;
  std::map<vr::ETrackedDeviceProperty, vr::ETrackedPropertyError> failures_;
  std::uint32_t writeCalls_ = 0;
};

}  // namespace bench
