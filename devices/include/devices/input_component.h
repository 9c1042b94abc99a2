#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstdint>

namespace ombrel {

// One input of a controller. The key is a button's mask, or an axis's number times ten plus 0 for x and 1 for y. The
// handle is 0 until the runtime has created the component; it is written by Activate and read by the link's reader.
struct InputComponent {
  std::uint64_t key;
  const char* path;
  std::atomic<vr::VRInputComponentHandle_t> handle{vr::k_ulInvalidInputComponentHandle};
};

// A boolean component of that path. The handle is whatever came back, even with an error, which is logged.
void CreateBooleanInput(vr::PropertyContainerHandle_t container, InputComponent& component);

// Sends a value to the runtime; a failure is logged.
void UpdateBooleanInput(const InputComponent& component, bool value);

// The same for a scalar; nobody asks whether it worked.
void CreateScalarInput(vr::PropertyContainerHandle_t container, InputComponent& component, vr::EVRScalarUnits units);
void UpdateScalarInput(const InputComponent& component, float value);

}  // namespace ombrel
