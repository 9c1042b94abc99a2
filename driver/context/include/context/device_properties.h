#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <span>
#include <variant>

namespace ombrel {

// One property of a tracked device. A string's terminating NUL belongs to its value.
struct DeviceProperty {
  vr::ETrackedDeviceProperty property;
  std::variant<bool, float, std::int32_t, std::uint64_t, const char*> value;
};

// The container that the runtime keeps a device's properties in; 0 when it offers no properties.
[[nodiscard]] vr::PropertyContainerHandle_t ContainerOf(std::uint32_t deviceIndex);

// One batch call of one entry for each, in order. Results are not looked at.
void WriteProperties(vr::PropertyContainerHandle_t container, std::span<const DeviceProperty> properties);

}  // namespace ombrel
