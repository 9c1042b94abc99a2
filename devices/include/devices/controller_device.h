#pragma once

#include <openvr_driver.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <string>

#include "devices/input_component.h"
#include "link/ombrel_core.h"
#include "link/wire.h"
#include "platform/runtime_abi.h"
#include "platform/seqlock.h"

namespace ombrel {

// A hand controller as the runtime sees it, moved and pressed by the companion's records. The link's reader thread
// constructs and updates it, the runtime's threads call the rest; none waits.
class ControllerDevice final : public vr::ITrackedDeviceServerDriver {
 public:
  ControllerDevice(OmbrelCore* link, vr::IVRServerDriverHost* host, std::int32_t controllerId);

  vr::EVRInitError Activate(std::uint32_t unObjectId) override;
  // Leaves the index as it is, and records go on taking effect: compatibility.md, C31.
  void Deactivate() override {}
  void EnterStandby() override {}
  void* GetComponent(const char* pchComponentNameAndVersion) override;
  void DebugRequest(const char* /*request*/, char* /*response*/, std::uint32_t /*size*/) override {}
  OMBREL_RETURNS_STRUCT(vr::DriverPose_t, GetPose, pose_.Load())

  // Reader thread: moves the device and sends what changed of its inputs. Changes nothing before Activate.
  void UpdateFromRecord(const ControllerUpdate& record);

  // Any thread.
  [[nodiscard]] std::int32_t ControllerId() const { return controllerId_; }
  [[nodiscard]] const std::string& SerialNumber() const { return serialNumber_; }
  [[nodiscard]] vr::PropertyContainerHandle_t PropertyContainer() const { return propertyContainer_; }
  // The way back to the companion, for haptic pulses; null once the headset that owned it is gone.
  [[nodiscard]] OmbrelCore* Link() const { return link_; }
  void ForgetLink() { link_ = nullptr; }

 private:
  void CreateInputs();
  void SendButtons(const ControllerState& state) const;
  void SendAxes(const ControllerState& state) const;

  // Each in ascending order of its keys, which is the order of creation and of events.
  std::array<InputComponent, 5> buttonComponents_;
  std::array<InputComponent, 1> touchComponents_;
  std::array<InputComponent, 3> axisComponents_;
  SeqLock<vr::DriverPose_t> pose_;
  ControllerState lastState_{};  // reader thread
  vr::IVRServerDriverHost* const host_;
  const std::int32_t controllerId_;
  const std::string modelNumber_ = "OmbrelController";
  std::atomic<OmbrelCore*> link_;
  std::atomic<vr::PropertyContainerHandle_t> propertyContainer_{vr::k_ulInvalidPropertyContainer};
  std::atomic<vr::VRInputComponentHandle_t> hapticComponent_{vr::k_ulInvalidInputComponentHandle};
  std::atomic<std::uint32_t> deviceIndex_{vr::k_unTrackedDeviceIndexInvalid};
  const std::string serialNumber_;
};

}  // namespace ombrel
