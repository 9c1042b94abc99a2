#pragma once

#include <cstddef>

#include <openvr_driver.h>

namespace bench {

// Calls as the runtime makes them. The runtime is built with MSVC, which passes a method's object first
// and the address of a structure result second; other compilers pass them the other way round. So the
// methods that return structures are called through their slot with that order written out.

// The function in one slot of an object's virtual table.
template <typename Function>
[[nodiscard]] Function* VirtualSlot(void* object, std::size_t slot) {
  void** table = *static_cast<void***>(object);
  return reinterpret_cast<Function*>(table[slot]);
}

// ITrackedDeviceServerDriver::GetPose, slot 5. `device` is a pointer to that interface.
[[nodiscard]] vr::DriverPose_t CallGetPose(void* device);

// IVRDisplayComponent::ComputeDistortion, slot 6. `display` is a pointer to that interface.
[[nodiscard]] vr::DistortionCoordinates_t CallComputeDistortion(void* display, vr::EVREye eye, float u, float v);

}  // namespace bench
