#include "server_driver_ombrel.h"

#include "companion_process.h"
#include "context/driver_context.h"
#include "context/driver_log.h"
#include "context/settings.h"
#include "devices/haptic_pulse.h"
#include "hmd/hmd_driver_direct.h"
#include "hmd/hmd_driver_virtual.h"
#include "platform/clock.h"
#include "platform/guarded.h"
#include "platform/process.h"
#include "render/headset_renderer.h"

namespace ombrel {
namespace {

constexpr std::uint32_t kBeforeReleaseMs = 400;

std::unique_ptr<HMDDriver> MakeHeadset(std::int32_t mode) {
  switch (mode) {
    case 1:
      return std::make_unique<HMDDriverVirtual>(MakeHeadsetRenderer());
    case 2:  // compatibility.md, C24; NOLINT(bugprone-branch-clone)
      return std::make_unique<HMDDriverDirect>(MakeHeadsetRenderer());
    default:
      return std::make_unique<HMDDriverDirect>(MakeHeadsetRenderer());
  }
}

}  // namespace

CServerDriver_Ombrel::~CServerDriver_Ombrel() {
  // A library that is unloaded without Cleanup may not join its threads: the loader lock is held.
  static_cast<void>(headset_.release());
}

vr::EVRInitError CServerDriver_Ombrel::Init(vr::IVRDriverContext* pDriverContext) {
  if (headset_ != nullptr) return vr::VRInitError_None;
  const vr::EVRInitError result = GuardedOr(vr::VRInitError_Init_HmdNotFound, [&] {
    const vr::EVRInitError error = Context().Init(pDriverContext);
    if (error != vr::VRInitError_None) return error;
    SetLogSinkIfNone(Context().DriverLog());
    return InitDevices();
  });
  // Half a start leaves nothing behind that would keep the next one from being whole.
  if (result != vr::VRInitError_None) ReleaseHeadset();
  return result;
}

vr::EVRInitError CServerDriver_Ombrel::InitDevices() {
  RetireDevices();
  fakeSensorEnabled_ = ReadBoolSetting("fakeSensorEnabled", true);
  if (!IsCompanionRunning(ListProcesses())) {
    Log("Pellmor not active\n");  // compatibility.md, C28
    return vr::VRInitError_Init_HmdNotFound;
  }
  Log("Ombrel process is running\n");
  AddHeadset();
  if (fakeSensorEnabled_) AddFakeSensor();
  return vr::VRInitError_None;
}

// What an earlier session left is no part of this one, but its runtime may still ask it for a pose.
void CServerDriver_Ombrel::RetireDevices() {
  devices_.clear();
  controllers_.Retire();
  if (fakeSensor_ != nullptr) retiredSensors_.push_back(std::move(fakeSensor_));
}

void CServerDriver_Ombrel::AddHeadset() {
  const std::int32_t mode = ReadInt32Setting("hmdMode");
  Log("Preparing HMD, mode %d\n", mode);
  headset_ = MakeHeadset(mode);
  headset_->Core().Client().AddListener(static_cast<IControllerUpdatedListener*>(this));
  headset_->Core().StartLink();
  devices_.push_back(headset_.get());
  // Under this very text: compatibility.md, C23. Whatever comes of it, the runtime may know the headset from here on,
  // which is no longer ours to take back then.
  Guarded([&] {
    Context().ServerDriverHost()->TrackedDeviceAdded("serialNumber", vr::TrackedDeviceClass_HMD, headset_.get());
  });
}

// Likewise: a session without a base station is one all the same.
void CServerDriver_Ombrel::AddFakeSensor() {
  const bool added = GuardedOr(false, [&] {
    vr::IVRServerDriverHost* host = Context().ServerDriverHost();
    fakeSensor_ = std::make_unique<FakeSensorDevice>(host, "Ombrel fake sensor", "0.1113");
    devices_.push_back(fakeSensor_.get());
    return host->TrackedDeviceAdded(fakeSensor_->SerialNumber().c_str(), vr::TrackedDeviceClass_TrackingReference,
                                    fakeSensor_.get());
  });
  Log("Fake sensor registered with result %d\n", added ? 1 : 0);
}

void CServerDriver_Ombrel::Cleanup() {
  Guarded([&] {
    ClearLogSink();
    if (headset_ == nullptr) return;
    headset_->Core().StopLink();
    // The runtime's own threads get the time to take in what they were told last: compatibility.md, C33.
    SleepMs(kBeforeReleaseMs);
    ReleaseHeadset();
  });
}

void CServerDriver_Ombrel::ReleaseHeadset() {
  if (headset_ == nullptr) return;
  // Before anything of the headset goes: the link's threads call it.
  headset_->Core().StopLink();
  controllers_.ForgetLinks();
  std::erase(devices_, headset_.get());
  headset_.reset();
}

const char* const* CServerDriver_Ombrel::GetInterfaceVersions() { return vr::k_InterfaceVersions; }

void CServerDriver_Ombrel::RunFrame() {
  Guarded([&] {
    DrainEvents();
    if (headset_ != nullptr) {
      firstFrameSeen_ = true;
      headset_->ReportWorn();
    }
    if (fakeSensor_ != nullptr && fakeSensorEnabled_) fakeSensor_->PushPose();
  });
}

void CServerDriver_Ombrel::DrainEvents() {
  vr::IVRServerDriverHost* host = Context().ServerDriverHost();
  if (host == nullptr) return;
  vr::VREvent_t event{};
  while (host->PollNextEvent(&event, sizeof(event))) {
    if (event.eventType != vr::VREvent_Input_HapticVibration) continue;
    // By value: elsewhere than on Windows the event is packed, and its parts do not lie where a reference may point.
    SendHapticPulse(event.data.hapticVibration.containerHandle, event.data.hapticVibration.fDurationSeconds);
  }
}

void CServerDriver_Ombrel::SendHapticPulse(vr::PropertyContainerHandle_t container, float durationSeconds) {
  const ControllerDevice* controller = controllers_.FindByContainer(container);
  if (controller == nullptr) return;
  OmbrelCore* link = controller->Link();
  if (link == nullptr || !link->Client().IsConnected()) return;
  const std::int64_t now = PerformanceCounter();
  link->Client().Send(LinkMessageType::kHapticPulse,
                      MakeHapticPulse(controller->ControllerId(), now, PerformanceFrequency(), durationSeconds), now);
}

bool CServerDriver_Ombrel::ShouldBlockStandbyMode() {
  Log("ShouldBlockStandby Server Tracked device \n");
  return true;
}

void CServerDriver_Ombrel::EnterStandby() { Log("Enter standby Server tracked device \n"); }

void CServerDriver_Ombrel::LeaveStandby() { Log("Leave standby Server tracked device \n"); }

// The record that makes a controller known is not applied to it (compatibility.md, C34): its state begins with the
// next.
void CServerDriver_Ombrel::OnControllerUpdated(const ControllerUpdate* record) {
  if (ControllerDevice* known = controllers_.Find(record->controllerId)) {
    known->UpdateFromRecord(*record);
    return;
  }
  vr::IVRServerDriverHost* host = Context().ServerDriverHost();
  const auto controllerId = static_cast<std::int32_t>(record->controllerId);
  ControllerDevice& device =
      controllers_.Add(record->controllerId, std::make_unique<ControllerDevice>(&headset_->Core(), host, controllerId));
  const bool added =
      host->TrackedDeviceAdded(device.SerialNumber().c_str(), vr::TrackedDeviceClass_Controller, &device);
  Log("New driver registered (serial %s) with status %d \n", device.SerialNumber().c_str(), added ? 1 : 0);
}

}  // namespace ombrel
