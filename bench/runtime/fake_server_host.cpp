#include "runtime/fake_server_host.h"

#include <utility>

#include "base/clock.h"
#include "runtime/pose_matrix.h"
#include "runtime/thread_id.h"

namespace bench {
namespace {

static_assert(sizeof(vr::DriverPose_t) == 280);

nlohmann::ordered_json ToJson(const vr::HmdQuaternion_t& rotation) {
  return {rotation.w, rotation.x, rotation.y, rotation.z};
}

nlohmann::ordered_json ToJson(uint32_t device, const vr::DriverPose_t& pose, uint32_t size) {
  return {{"device", device},
          {"size", size},
          {"rotation", ToJson(pose.qRotation)},
          {"position", pose.vecPosition},
          {"velocity", pose.vecVelocity},
          {"angularVelocity", pose.vecAngularVelocity},
          {"acceleration", pose.vecAcceleration},
          {"worldFromDriver", ToJson(pose.qWorldFromDriverRotation)},
          {"driverFromHead", ToJson(pose.qDriverFromHeadRotation)},
          {"offset", pose.poseTimeOffset},
          {"result", static_cast<int>(pose.result)},
          {"valid", pose.poseIsValid},
          {"connected", pose.deviceIsConnected}};
}

vr::TrackedDevicePose_t ToTrackedPose(const vr::DriverPose_t& pose) {
  vr::TrackedDevicePose_t tracked{};
  tracked.mDeviceToAbsoluteTracking = runtime::WorldFromHead(pose);
  for (int axis = 0; axis < 3; ++axis) {
    tracked.vVelocity.v[axis] = static_cast<float>(pose.vecVelocity[axis]);
    tracked.vAngularVelocity.v[axis] = static_cast<float>(pose.vecAngularVelocity[axis]);
  }
  tracked.eTrackingResult = pose.result;
  tracked.bPoseIsValid = pose.poseIsValid;
  tracked.bDeviceIsConnected = pose.deviceIsConnected;
  return tracked;
}

}  // namespace

std::vector<AddedDevice> FakeServerHost::Added() const {
  const std::lock_guard lock(mutex_);
  return added_;
}

std::vector<AddedDevice> FakeServerHost::TakePending() {
  const std::lock_guard lock(mutex_);
  return std::exchange(pending_, {});
}

void FakeServerHost::RefuseDevice(const std::string& serial) {
  const std::lock_guard lock(mutex_);
  refused_.insert(serial);
}

void FakeServerHost::ActivateAtOnce() { activateAtOnce_ = true; }

void FakeServerHost::PushEvent(const vr::VREvent_t& event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(event);
}

void FakeServerHost::PushHaptic(vr::PropertyContainerHandle_t container, vr::VRInputComponentHandle_t component,
                                float durationSeconds, float frequency, float amplitude) {
  vr::VREvent_t event{};
  event.eventType = vr::VREvent_Input_HapticVibration;
  event.trackedDeviceIndex = vr::k_unTrackedDeviceIndexInvalid;
  event.data.hapticVibration = {container, component, durationSeconds, frequency, amplitude};
  PushEvent(event);
}

std::size_t FakeServerHost::QueuedEvents() const {
  const std::lock_guard lock(mutex_);
  return events_.size();
}

std::size_t FakeServerHost::PollsWithWrongSize() const {
  const std::lock_guard lock(mutex_);
  return pollsWithWrongSize_;
}

std::size_t FakeServerHost::VsyncEvents() const {
  const std::lock_guard lock(mutex_);
  return vsyncEvents_;
}

void FakeServerHost::SetExiting(bool exiting) {
  const std::lock_guard lock(mutex_);
  exiting_ = exiting;
}

vr::TrackedDeviceIndex_t FakeServerHost::NextIndex(vr::ETrackedDeviceClass deviceClass) {
  if (deviceClass == vr::TrackedDeviceClass_HMD && !headsetIndexTaken_) {
    headsetIndexTaken_ = true;
    return vr::k_unTrackedDeviceIndex_Hmd;
  }
  return nextIndex_ < vr::k_unMaxTrackedDeviceCount ? nextIndex_++ : vr::k_unTrackedDeviceIndexInvalid;
}

bool FakeServerHost::TrackedDeviceAdded(const char* pchDeviceSerialNumber, vr::ETrackedDeviceClass eDeviceClass,
                                        vr::ITrackedDeviceServerDriver* pDriver) {
  AddedDevice device;
  device.serial = pchDeviceSerialNumber != nullptr ? pchDeviceSerialNumber : "";
  device.deviceClass = eDeviceClass;
  device.driver = pDriver;
  {
    const std::lock_guard lock(mutex_);
    if (pDriver != nullptr && !refused_.contains(device.serial)) {
      device.index = NextIndex(eDeviceClass);
      device.accepted = device.index != vr::k_unTrackedDeviceIndexInvalid;
    }
    added_.push_back(device);
    if (device.accepted) {
      pending_.push_back(device);
    }
  }
  recorder_.Enter(
      "IVRServerDriverHost.TrackedDeviceAdded",
      {{"serial", device.serial}, {"class", static_cast<int>(eDeviceClass)}, {"accepted", device.accepted}});
  if (onAdded) {
    onAdded(device);
  }
  if (device.accepted && activateAtOnce_) {
    pDriver->Activate(device.index);
  }
  return device.accepted;
}

void FakeServerHost::TrackedDevicePoseUpdated(uint32_t unWhichDevice, const vr::DriverPose_t& newPose,
                                              uint32_t unPoseStructSize) {
  PoseRecord record;
  record.ticks = NowTicks();
  record.threadId = runtime::ThreadId();
  record.device = unWhichDevice;
  record.structSize = unPoseStructSize;
  if (unPoseStructSize == sizeof(vr::DriverPose_t)) {
    record.pose = newPose;
  }
  poses_.Add(record);
  if (!recorder_.KeepsNothing()) {
    recorder_.Enter("IVRServerDriverHost.TrackedDevicePoseUpdated",
                    ToJson(unWhichDevice, record.pose, unPoseStructSize));
  }
}

void FakeServerHost::VsyncEvent(double vsyncTimeOffsetSeconds) {
  if (onVsync) {
    onVsync();
  }
  if (recorder_.KeepsNothing()) {
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    ++vsyncEvents_;
  }
  recorder_.Enter("IVRServerDriverHost.VsyncEvent", {{"offset", vsyncTimeOffsetSeconds}});
}

void FakeServerHost::VendorSpecificEvent(uint32_t unWhichDevice, vr::EVREventType eventType, const vr::VREvent_Data_t&,
                                         double eventTimeOffset) {
  recorder_.Enter("IVRServerDriverHost.VendorSpecificEvent",
                  {{"device", unWhichDevice}, {"type", static_cast<int>(eventType)}, {"offset", eventTimeOffset}});
}

bool FakeServerHost::IsExiting() {
  recorder_.Enter("IVRServerDriverHost.IsExiting");
  const std::lock_guard lock(mutex_);
  return exiting_;
}

bool FakeServerHost::PollNextEvent(vr::VREvent_t* pEvent, uint32_t uncbVREvent) {
  if (recorder_.KeepsNothing()) {
    return nextEvent && nextEvent(pEvent);
  }
  bool delivered = false;
  uint32_t type = 0;
  {
    const std::lock_guard lock(mutex_);
    if (uncbVREvent != sizeof(vr::VREvent_t)) {
      ++pollsWithWrongSize_;
    } else if (pEvent != nullptr && !events_.empty()) {
      *pEvent = events_.front();
      type = pEvent->eventType;
      events_.pop_front();
      delivered = true;
    }
  }
  if (delivered || uncbVREvent != sizeof(vr::VREvent_t)) {  // an empty queue is asked on every frame: no news
    recorder_.Enter("IVRServerDriverHost.PollNextEvent",
                    {{"size", uncbVREvent}, {"delivered", delivered}, {"type", type}});
  }
  return delivered;
}

void FakeServerHost::GetRawTrackedDevicePoses(float fPredictedSecondsFromNow,
                                              vr::TrackedDevicePose_t* pTrackedDevicePoseArray,
                                              uint32_t unTrackedDevicePoseArrayCount) {
  recorder_.Enter("IVRServerDriverHost.GetRawTrackedDevicePoses",
                  {{"predicted", fPredictedSecondsFromNow}, {"count", unTrackedDevicePoseArrayCount}});
  for (uint32_t device = 0; device < unTrackedDevicePoseArrayCount; ++device) {
    const auto latest = poses_.Latest(device);
    pTrackedDevicePoseArray[device] = latest ? ToTrackedPose(latest->pose) : vr::TrackedDevicePose_t{};
  }
}

void FakeServerHost::TrackedDeviceDisplayTransformUpdated(uint32_t unWhichDevice, vr::HmdMatrix34_t,
                                                          vr::HmdMatrix34_t) {
  recorder_.Enter("IVRServerDriverHost.TrackedDeviceDisplayTransformUpdated", {{"device", unWhichDevice}});
}

}  // namespace bench
