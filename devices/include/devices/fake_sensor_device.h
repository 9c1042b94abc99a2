#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/runtime_abi.h"

namespace ombrel {

// A base station that is not there: applications made for a whole room look for one. It stands still, three metres
// along z, and has no inputs. All calls come on the runtime's threads; none waits.
class FakeSensorDevice final : public vr::ITrackedDeviceServerDriver {
 public:
  FakeSensorDevice(vr::IVRServerDriverHost* host, const char* modelNumber, const char* serialNumber);

  vr::EVRInitError Activate(std::uint32_t unObjectId) override;
  // Leaves the index as it is, and the pose is sent on: compatibility.md, C31.
  void Deactivate() override;
  void EnterStandby() override {}
  void* GetComponent(const char* pchComponentNameAndVersion) override;
  void DebugRequest(const char* /*request*/, char* /*response*/, std::uint32_t /*size*/) override {}
  OMBREL_RETURNS_STRUCT(vr::DriverPose_t, GetPose, pose_)

  // Once per frame, on the server thread: sends the pose, if the device is active.
  void PushPose();
  [[nodiscard]] const std::string& SerialNumber() const { return serialNumber_; }

 private:
  const vr::DriverPose_t pose_;
  vr::IVRServerDriverHost* const host_;
  const std::string modelNumber_;
  std::atomic<vr::PropertyContainerHandle_t> propertyContainer_{vr::k_ulInvalidPropertyContainer};
  std::atomic<std::uint32_t> deviceIndex_{vr::k_unTrackedDeviceIndexInvalid};
  const std::string serialNumber_;
};

}  // namespace ombrel
