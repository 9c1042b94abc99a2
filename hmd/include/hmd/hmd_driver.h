#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "hmd/display_geometry.h"
#include "hmd/head_pose.h"
#include "hmd/hmd_display.h"
#include "link/listeners.h"
#include "link/ombrel_core.h"
#include "platform/runtime_abi.h"
#include "platform/seqlock.h"
#include "platform/sync.h"

namespace ombrel {

// The headset as the runtime sees it: a display with both eyes side by side, whose orientation comes from the companion
// and whose frames go back to it. Never built alone: a derived class adds the way of its frames.
//
// The runtime's server thread constructs, activates and asks; the link's reader thread calls the listeners. No call
// waits for anything but a frame under way (destruction), the making of textures (Activate), or the runtime.
class HMDDriver : public vr::ITrackedDeviceServerDriver,
                  public HMDDisplay,
                  public ITrackingUpdatedListener,
                  public IFramerateUpdatedListener {
 public:
  virtual ~HMDDriver() = default;
  HMDDriver(const HMDDriver&) = delete;
  HMDDriver& operator=(const HMDDriver&) = delete;

  // Makes the output textures. Waits for those who make or use others at the moment: two seconds at most, besides the
  // time that Direct3D takes to make a lost device anew.
  vr::EVRInitError Activate(std::uint32_t unObjectId) override;
  void Deactivate() override;
  void EnterStandby() override {}
  // The derived classes answer for their own components first.
  void* GetComponent(const char* pchComponentNameAndVersion) override;
  void DebugRequest(const char* pchRequest, char* pchResponseBuffer, std::uint32_t unResponseBufferSize) override;
  OMBREL_RETURNS_STRUCT(vr::DriverPose_t, GetPose, pose_.Load())

  void OnTrackingUpdated() override;
  void OnFramerateUpdated(std::uint32_t framesPerSecond) override;

  // Once per frame, on the server thread: an active headset reports itself worn (compatibility.md, C27).
  void ReportWorn();
  [[nodiscard]] OmbrelCore& Core() { return core_; }

 protected:
  explicit HMDDriver(std::unique_ptr<IFrameRenderer> renderer);
  [[nodiscard]] vr::IVRServerDriverHost* Host() const { return host_; }

 private:
  void ApplySettings();
  void LogConfiguration() const;
  void WriteHeadsetProperties();
  void CreateProximityInput();
  void PublishPose();
  [[nodiscard]] bool IsActivated() const { return deviceIndex_ != vr::k_unTrackedDeviceIndexInvalid; }
  [[nodiscard]] const DisplayGeometry& Geometry() const override { return geometry_; }

  const std::string serialNumber_ = "0.8";
  const std::string modelNumber_ = "Ombrel";
  DisplayGeometry geometry_;
  const float secondsFromVsyncToPhotons_ = 0.005F;
  Mutex frequencyMutex_;  // held while the frequency is changed and written as a property, so that the last one stands
  float displayFrequency_ = 60.0F;
  const float ipdMeters_ = 0.065F;
  SeqLock<vr::DriverPose_t> pose_;
  RotationOffsets rotationOffsets_;
  // Invalid unless the runtime made the input. Handle and success in one, so that nobody sees the one without the
  // other.
  std::atomic<vr::VRInputComponentHandle_t> proximityComponent_{vr::k_ulInvalidInputComponentHandle};
  std::atomic<vr::PropertyContainerHandle_t> propertyContainer_{vr::k_ulInvalidPropertyContainer};
  vr::IVRServerDriverHost* const host_;
  std::atomic<std::uint32_t> deviceIndex_{vr::k_unTrackedDeviceIndexInvalid};
  OmbrelCore core_;  // last: its threads call this headset until it is gone
};

}  // namespace ombrel
