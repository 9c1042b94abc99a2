#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"
#include "runtime/pose_log.h"

namespace bench {

// One TrackedDeviceAdded call.
struct AddedDevice {
  std::string serial;
  vr::ETrackedDeviceClass deviceClass = {};
  vr::ITrackedDeviceServerDriver* driver = nullptr;
  bool accepted = false;
  // The index that an accepted device will be activated with: 0 for the first headset, else counted from 1.
  vr::TrackedDeviceIndex_t index = vr::k_unTrackedDeviceIndexInvalid;
};

// IVRServerDriverHost_005. Callable from any thread.
class FakeServerHost : public vr::IVRServerDriverHost {
 public:
  explicit FakeServerHost(CallRecorder& recorder) : recorder_(recorder) {}

  // Every TrackedDeviceAdded call, in order.
  [[nodiscard]] std::vector<AddedDevice> Added() const;
  // The accepted devices that nobody has taken for activation yet, in order.
  [[nodiscard]] std::vector<AddedDevice> TakePending();
  // TrackedDeviceAdded will answer false for that serial.
  void RefuseDevice(const std::string& serial);
  // Devices are activated within TrackedDeviceAdded from here on, not by whoever takes the pending ones.
  void ActivateAtOnce();

  // Called on the driver's threads, without a lock. Set before the driver starts.
  // After a TrackedDeviceAdded call is written down; what it throws reaches the driver.
  std::function<void(const AddedDevice&)> onAdded;
  std::function<void()> onVsync;
  // Instead of the queue, and only when nothing is kept.
  std::function<bool(vr::VREvent_t*)> nextEvent;

  [[nodiscard]] PoseLog& Poses() { return poses_; }

  void PushEvent(const vr::VREvent_t& event);
  // An Input_HapticVibration event as the runtime makes it for a haptic output.
  void PushHaptic(vr::PropertyContainerHandle_t container, vr::VRInputComponentHandle_t component,
                  float durationSeconds, float frequency, float amplitude);
  [[nodiscard]] std::size_t QueuedEvents() const;
  // PollNextEvent calls whose size argument was not that of VREvent_t (48 on Windows); they get no event.
  [[nodiscard]] std::size_t PollsWithWrongSize() const;
  [[nodiscard]] std::size_t VsyncEvents() const;
  void SetExiting(bool exiting);

  bool TrackedDeviceAdded(const char* pchDeviceSerialNumber, vr::ETrackedDeviceClass eDeviceClass,
                          vr::ITrackedDeviceServerDriver* pDriver) override;
  void TrackedDevicePoseUpdated(uint32_t unWhichDevice, const vr::DriverPose_t& newPose,
                                uint32_t unPoseStructSize) override;
  void VsyncEvent(double vsyncTimeOffsetSeconds) override;
  void VendorSpecificEvent(uint32_t unWhichDevice, vr::EVREventType eventType, const vr::VREvent_Data_t& eventData,
                           double eventTimeOffset) override;
  bool IsExiting() override;
  bool PollNextEvent(vr::VREvent_t* pEvent, uint32_t uncbVREvent) override;
  void GetRawTrackedDevicePoses(float fPredictedSecondsFromNow, vr::TrackedDevicePose_t* pTrackedDevicePoseArray,
                                uint32_t unTrackedDevicePoseArrayCount) override;
  void TrackedDeviceDisplayTransformUpdated(uint32_t unWhichDevice, vr::HmdMatrix34_t eyeToHeadLeft,
                                            vr::HmdMatrix34_t eyeToHeadRight) override;

 private:
  [[nodiscard]] vr::TrackedDeviceIndex_t NextIndex(vr::ETrackedDeviceClass deviceClass);

  CallRecorder& recorder_;
  PoseLog poses_{recorder_};
  mutable std::mutex mutex_;
  std::vector<AddedDevice> added_;
  std::vector<AddedDevice> pending_;
  std::set<std::string> refused_;
  std::deque<vr::VREvent_t> events_;
  vr::TrackedDeviceIndex_t nextIndex_ = 1;
  std::size_t pollsWithWrongSize_ = 0;
  std::size_t vsyncEvents_ = 0;
  bool headsetIndexTaken_ = false;
  std::atomic<bool> activateAtOnce_ = false;
  bool exiting_ = false;
};

}  // namespace bench
