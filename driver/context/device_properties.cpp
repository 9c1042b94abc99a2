#include "context/device_properties.h"

#include <cstring>

#include "context/driver_context.h"

namespace ombrel {
namespace {

// What a batch entry says of a value: where it is, how long, and of what type.
struct Encoding {
  const void* bytes;
  std::size_t size;
  vr::PropertyTypeTag_t tag;
};

Encoding Encode(const bool& value) { return {&value, sizeof(value), vr::k_unBoolPropertyTag}; }
Encoding Encode(const float& value) { return {&value, sizeof(value), vr::k_unFloatPropertyTag}; }
Encoding Encode(const std::int32_t& value) { return {&value, sizeof(value), vr::k_unInt32PropertyTag}; }
Encoding Encode(const std::uint64_t& value) { return {&value, sizeof(value), vr::k_unUint64PropertyTag}; }
Encoding Encode(const char* const& value) { return {value, std::strlen(value) + 1, vr::k_unStringPropertyTag}; }

}  // namespace

vr::PropertyContainerHandle_t ContainerOf(std::uint32_t deviceIndex) {
  vr::IVRProperties* properties = Context().Properties();
  return properties != nullptr ? properties->TrackedDeviceToPropertyContainer(deviceIndex)
                               : vr::k_ulInvalidPropertyContainer;
}

void WriteProperties(vr::PropertyContainerHandle_t container, std::span<const DeviceProperty> list) {
  vr::IVRProperties* properties = Context().Properties();
  if (properties == nullptr) return;
  for (const DeviceProperty& entry : list) {
    const Encoding encoding = std::visit([](const auto& value) { return Encode(value); }, entry.value);
    vr::PropertyWrite_t write{};
    write.prop = entry.property;
    write.writeType = vr::PropertyWrite_Set;
    // The runtime takes what it only reads by a pointer to what it could change.
    write.pvBuffer = const_cast<void*>(encoding.bytes);
    write.unBufferSize = static_cast<std::uint32_t>(encoding.size);
    write.unTag = encoding.tag;
    properties->WritePropertyBatch(container, &write, 1);
  }
}

}  // namespace ombrel
