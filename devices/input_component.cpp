#include "devices/input_component.h"

#include "context/driver_context.h"
#include "context/driver_log.h"

namespace ombrel {

void CreateBooleanInput(vr::PropertyContainerHandle_t container, InputComponent& component) {
  vr::IVRDriverInput* input = Context().DriverInput();
  if (input == nullptr) return;
  vr::VRInputComponentHandle_t handle = component.handle;
  const vr::EVRInputError error = input->CreateBooleanComponent(container, component.path, &handle);
  component.handle = handle;
  if (error != vr::VRInputError_None) {
    Log("Error while creating boolean component %s, error: %d \n", component.path, static_cast<int>(error));
  }
}

void UpdateBooleanInput(const InputComponent& component, bool value) {
  vr::IVRDriverInput* input = Context().DriverInput();
  if (input == nullptr) return;
  const vr::EVRInputError error = input->UpdateBooleanComponent(component.handle, value, 0.0);
  if (error != vr::VRInputError_None) {
    Log("Error while updating boolean component %s, error: %d \n", component.path, static_cast<int>(error));
  }
}

void CreateScalarInput(vr::PropertyContainerHandle_t container, InputComponent& component, vr::EVRScalarUnits units) {
  vr::IVRDriverInput* input = Context().DriverInput();
  if (input == nullptr) return;
  vr::VRInputComponentHandle_t handle = component.handle;
  input->CreateScalarComponent(container, component.path, &handle, vr::VRScalarType_Absolute, units);
  component.handle = handle;
}

void UpdateScalarInput(const InputComponent& component, float value) {
  if (vr::IVRDriverInput* input = Context().DriverInput()) {
    input->UpdateScalarComponent(component.handle, value, 0.0);
  }
}

}  // namespace ombrel
