#include "runtime/fake_properties.h"

#include "runtime/matching.h"

namespace bench {
namespace {

constexpr vr::PropertyContainerHandle_t kFirstDeviceContainer = 0x200000001;

bool IsDeviceContainer(vr::PropertyContainerHandle_t container) {
  return container >= kFirstDeviceContainer && container < kFirstDeviceContainer + vr::k_unMaxTrackedDeviceCount;
}

nlohmann::ordered_json ToJson(const PropertyWriteRecord& write) {
  nlohmann::ordered_json value;
  if (write.tag == vr::k_unStringPropertyTag) {
    value = write.AsString().value_or("");
  } else if (write.tag == vr::k_unFloatPropertyTag && write.bytes.size() == sizeof(float)) {
    value = *write.As<float>();
  } else if (write.tag == vr::k_unInt32PropertyTag && write.bytes.size() == sizeof(std::int32_t)) {
    value = *write.As<std::int32_t>();
  } else if (write.tag == vr::k_unUint64PropertyTag && write.bytes.size() == sizeof(std::uint64_t)) {
    value = *write.As<std::uint64_t>();
  } else if (write.tag == vr::k_unBoolPropertyTag && write.bytes.size() == 1) {
    value = write.bytes[0] != 0;
  } else {
    value = write.bytes;
  }
  return {{"property", static_cast<int>(write.property)},
          {"tag", write.tag},
          {"size", write.bytes.size()},
          {"writeType", static_cast<int>(write.writeType)},
          {"value", std::move(value)}};
}

PropertyWriteRecord ToRecord(vr::PropertyContainerHandle_t container, const vr::PropertyWrite_t& entry) {
  PropertyWriteRecord record;
  record.container = container;
  record.property = entry.prop;
  record.tag = entry.unTag;
  record.writeType = entry.writeType;
  if (entry.pvBuffer != nullptr) {
    const auto* bytes = static_cast<const std::uint8_t*>(entry.pvBuffer);
    record.bytes.assign(bytes, bytes + entry.unBufferSize);
  }
  return record;
}

}  // namespace

std::optional<std::string> PropertyWriteRecord::AsString() const {
  if (bytes.empty() || bytes.back() != 0) {
    return std::nullopt;
  }
  return std::string(bytes.begin(), bytes.end() - 1);
}

vr::PropertyContainerHandle_t FakeProperties::ContainerOf(vr::TrackedDeviceIndex_t device) {
  return device < vr::k_unMaxTrackedDeviceCount ? kFirstDeviceContainer + device : vr::k_ulInvalidPropertyContainer;
}

std::vector<PropertyWriteRecord> FakeProperties::Writes() const {
  const std::lock_guard lock(mutex_);
  return writes_;
}

std::vector<PropertyWriteRecord> FakeProperties::Writes(vr::PropertyContainerHandle_t container) const {
  const std::lock_guard lock(mutex_);
  return runtime::Matching(writes_, [=](const PropertyWriteRecord& write) { return write.container == container; });
}

std::optional<PropertyWriteRecord> FakeProperties::Find(vr::PropertyContainerHandle_t container,
                                                        vr::ETrackedDeviceProperty property) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find({container, property});
  return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> FakeProperties::GetString(vr::PropertyContainerHandle_t container,
                                                     vr::ETrackedDeviceProperty property) const {
  const auto found = Find(container, property);
  return found ? found->AsString() : std::nullopt;
}

void FakeProperties::FailWrite(vr::ETrackedDeviceProperty property, vr::ETrackedPropertyError error) {
  const std::lock_guard lock(mutex_);
  failures_[property] = error;
}

vr::ETrackedPropertyError FakeProperties::Store(const PropertyWriteRecord& write) {
  if (const auto failure = failures_.find(write.property); failure != failures_.end()) {
    return failure->second;
  }
  if (!IsDeviceContainer(write.container)) {
    return vr::TrackedProp_InvalidDevice;
  }
  if (write.writeType == vr::PropertyWrite_Set) {
    values_[{write.container, write.property}] = write;
  } else {
    values_.erase({write.container, write.property});
  }
  return vr::TrackedProp_Success;
}

vr::ETrackedPropertyError FakeProperties::WritePropertyBatch(vr::PropertyContainerHandle_t ulContainerHandle,
                                                             vr::PropertyWrite_t* pBatch, uint32_t unBatchEntryCount) {
  for (uint32_t index = 0; onWrite && index < unBatchEntryCount; ++index) {
    onWrite(ulContainerHandle, pBatch[index]);
  }
  if (recorder_.KeepsNothing()) {
    return vr::TrackedProp_Success;
  }
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  vr::ETrackedPropertyError first = vr::TrackedProp_Success;
  {
    const std::lock_guard lock(mutex_);
    for (uint32_t index = 0; index < unBatchEntryCount; ++index) {
      PropertyWriteRecord record = ToRecord(ulContainerHandle, pBatch[index]);
      record.call = writeCalls_;
      record.entryInCall = index;
      record.entriesInCall = unBatchEntryCount;
      record.result = Store(record);
      pBatch[index].eError = record.result;
      first = first == vr::TrackedProp_Success ? record.result : first;
      entries.push_back(ToJson(record));
      writes_.push_back(std::move(record));
    }
    ++writeCalls_;
  }
  recorder_.Enter("IVRProperties.WritePropertyBatch",
                  {{"container", ulContainerHandle}, {"count", unBatchEntryCount}, {"entries", std::move(entries)}});
  return first;
}

vr::ETrackedPropertyError FakeProperties::ReadOne(vr::PropertyContainerHandle_t container, vr::PropertyRead_t& read) {
  if (!IsDeviceContainer(container)) {
    return vr::TrackedProp_InvalidDevice;
  }
  const auto found = values_.find({container, read.prop});
  if (found == values_.end()) {
    return vr::TrackedProp_UnknownProperty;
  }
  read.unTag = found->second.tag;
  read.unRequiredBufferSize = static_cast<uint32_t>(found->second.bytes.size());
  if (read.pvBuffer == nullptr || read.unBufferSize < read.unRequiredBufferSize) {
    return vr::TrackedProp_BufferTooSmall;
  }
  std::memcpy(read.pvBuffer, found->second.bytes.data(), found->second.bytes.size());
  return vr::TrackedProp_Success;
}

vr::ETrackedPropertyError FakeProperties::ReadPropertyBatch(vr::PropertyContainerHandle_t ulContainerHandle,
                                                            vr::PropertyRead_t* pBatch, uint32_t unBatchEntryCount) {
  recorder_.Enter("IVRProperties.ReadPropertyBatch", {{"container", ulContainerHandle}, {"count", unBatchEntryCount}});
  vr::ETrackedPropertyError first = vr::TrackedProp_Success;
  const std::lock_guard lock(mutex_);
  for (uint32_t index = 0; index < unBatchEntryCount; ++index) {
    pBatch[index].eError = ReadOne(ulContainerHandle, pBatch[index]);
    first = first == vr::TrackedProp_Success ? pBatch[index].eError : first;
  }
  return first;
}

const char* FakeProperties::GetPropErrorNameFromEnum(vr::ETrackedPropertyError error) {
  static constexpr const char* kNames[] = {"TrackedProp_Success",
                                           "TrackedProp_WrongDataType",
                                           "TrackedProp_WrongDeviceClass",
                                           "TrackedProp_BufferTooSmall",
                                           "TrackedProp_UnknownProperty",
                                           "TrackedProp_InvalidDevice",
                                           "TrackedProp_CouldNotContactServer",
                                           "TrackedProp_ValueNotProvidedByDevice",
                                           "TrackedProp_StringExceedsMaximumLength",
                                           "TrackedProp_NotYetAvailable",
                                           "TrackedProp_PermissionDenied",
                                           "TrackedProp_InvalidOperation",
                                           "TrackedProp_CannotWriteToWildcards"};
  const auto index = static_cast<std::size_t>(error);
  return index < std::size(kNames) ? kNames[index] : "Unknown property error";
}

vr::PropertyContainerHandle_t FakeProperties::TrackedDeviceToPropertyContainer(vr::TrackedDeviceIndex_t nDevice) {
  if (!recorder_.KeepsNothing()) {
    recorder_.Enter("IVRProperties.TrackedDeviceToPropertyContainer", {{"device", nDevice}});
  }
  return ContainerOf(nDevice);
}

}  // namespace bench
