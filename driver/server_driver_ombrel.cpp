#include "server_driver_ombrel.h"

#include "companion_process.h"
#include "context/driver_context.h"
#include "context/driver_log.h"
#include "context/settings.h"
#include "hmd/hmd_driver_direct.h"
#include "platform/clock.h"
#include "platform/guarded.h"
#include "platform/process.h"
#include "render/headset_renderer.h"

namespace ombrel {
namespace {

constexpr std::uint32_t kLinkStopMs = 100;
constexpr std::uint32_t kBeforeReleaseMs = 300;
static_assert(sizeof(vr::VREvent_t) == 48);

}  // namespace

CServerDriver_Ombrel::~CServerDriver_Ombrel() {
  // A library that is unloaded without Cleanup may not wait for its threads: the loader's lock is held.
  static_cast<void>(headset_.release());
}

vr::EVRInitError CServerDriver_Ombrel::Init(vr::IVRDriverContext* pDriverContext) {
  return GuardedOr(vr::VRInitError_Init_Internal, [&] {
    if (headset_ != nullptr) return vr::VRInitError_None;
    const vr::EVRInitError error = Context().Init(pDriverContext);
    if (error != vr::VRInitError_None) return error;
    SetLogSinkIfNone(Context().DriverLog());
    return InitDevices();
  });
}

vr::EVRInitError CServerDriver_Ombrel::InitDevices() {
  fakeSensorEnabled_ = ReadBoolSetting("fakeSensorEnabled", true);
  if (!IsCompanionRunning(ListProcesses())) {
    Log("Pellmor not active\n");
    return vr::VRInitError_Init_HmdNotFound;
  }
  Log("Ombrel process is running\n");
  AddHeadset();
  if (fakeSensorEnabled_) AddFakeSensor();
  return vr::VRInitError_None;
}

void CServerDriver_Ombrel::AddHeadset() {
  const std::int32_t mode = ReadInt32Setting("hmdMode");
  Log("Preparing HMD, mode %d\n", mode);
  headset_ = std::make_unique<HMDDriverDirect>(MakeHeadsetRenderer());
  headset_->Core().Client().AddListener(static_cast<IControllerUpdatedListener*>(this));
  devices_.push_back(headset_.get());
  // Announced under this very text, not under the serial number that it has as a property.
  Context().ServerDriverHost()->TrackedDeviceAdded("serialNumber", vr::TrackedDeviceClass_HMD, headset_.get());
}

void CServerDriver_Ombrel::AddFakeSensor() {
  vr::IVRServerDriverHost* host = Context().ServerDriverHost();
  fakeSensor_ = std::make_unique<FakeSensorDevice>(host, "Ombrel fake sensor", "0.1113");
  const bool added = host->TrackedDeviceAdded(fakeSensor_->SerialNumber().c_str(),
                                              vr::TrackedDeviceClass_TrackingReference, fakeSensor_.get());
  Log("Fake sensor registered with result %d\n", added ? 1 : 0);
  devices_.push_back(fakeSensor_.get());
}

void CServerDriver_Ombrel::Cleanup() {
  Guarded([&] {
    ClearLogSink();
    if (headset_ == nullptr) return;
    headset_->Core().StopLink();
    SleepMs(kLinkStopMs);
    SleepMs(kBeforeReleaseMs);
    std::erase(devices_, headset_.get());
    headset_.reset();
  });
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
  }
}

bool CServerDriver_Ombrel::ShouldBlockStandbyMode() {
  Log("ShouldBlockStandby Server Tracked device \n");
  return true;
}

void CServerDriver_Ombrel::EnterStandby() { Log("Enter standby Server tracked device \n"); }

void CServerDriver_Ombrel::LeaveStandby() { Log("Leave standby Server tracked device \n"); }

void CServerDriver_Ombrel::OnControllerUpdated(const ControllerUpdate* /*record*/) {}

}  // namespace ombrel
