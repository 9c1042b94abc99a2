#include "stress_runtime.h"

#include "context/driver_context.h"
#include "support/tell_tale.h"

namespace ombrel::test {
namespace {

// Often enough to meet one that is being written.
constexpr int kAsksInARow = 50;

bool IsWhole(vr::ETrackedDeviceClass deviceClass, const vr::DriverPose_t& pose) {
  switch (deviceClass) {
    case vr::TrackedDeviceClass_HMD:
      return IsWholeHeadPose(pose);
    case vr::TrackedDeviceClass_Controller:
      return IsWholeControllerPose(pose);
    default:
      return pose.vecPosition[2] == 3.0 && pose.qRotation.w == 1.0 && pose.deviceIsConnected;
  }
}

}  // namespace

StressRuntime::StressRuntime(std::int32_t hmdMode) { SetHooks(hmdMode); }

StressRuntime::~StressRuntime() {
  Stop();
  Context().Clear();
}

void StressRuntime::SetHooks(std::int32_t hmdMode) {
  host_.KeepNothing();
  host_.Settings().Set("driver_ombrel", "hmdMode", hmdMode);
  host_.Host().onAdded = [this](const bench::AddedDevice& added) { AddDevice(added.deviceClass, added.driver); };
  host_.Poses().Listen([this](const bench::PoseRecord& record) { OnPose(record); });
  host_.Input().onUpdate = [this](const bench::InputUpdate&) { ++done_.inputs; };
  host_.Properties().onWrite = [this](auto, const vr::PropertyWrite_t& write) {
    if (write.prop == vr::Prop_DisplayFrequency_Float) ++done_.frequencies;
  };
  host_.Host().nextEvent = [this](vr::VREvent_t* event) { return NextEvent(event); };
  host_.Host().onVsync = [this] { ++done_.vsyncs; };
}

void StressRuntime::AddDevice(vr::ETrackedDeviceClass deviceClass, vr::ITrackedDeviceServerDriver* driver) {
  const std::lock_guard guard(addingMutex_);
  Device& device = devices_.at(deviceCount_);
  device.driver = driver;
  device.deviceClass = deviceClass;
  device.isActivated = false;
  ++deviceCount_;
}

bool StressRuntime::Start() {
  deviceCount_ = 0;
  if (provider_.Init(&host_) != vr::VRInitError_None) return false;
  vr::ITrackedDeviceServerDriver* headset = devices_[0].driver;
  direct_ =
      static_cast<vr::IVRDriverDirectModeComponent*>(headset->GetComponent(vr::IVRDriverDirectModeComponent_Version));
  virtual_ = static_cast<vr::IVRVirtualDisplay*>(headset->GetComponent(vr::IVRVirtualDisplay_Version));
  return (direct_ != nullptr) != (virtual_ != nullptr);
}

void StressRuntime::Tick() {
  ActivateNewDevices();
  isVibrationDue_.store(true, std::memory_order_relaxed);
  provider_.RunFrame();
  static_cast<void>(provider_.GetInterfaceVersions());
  static_cast<void>(provider_.ShouldBlockStandbyMode());
  provider_.EnterStandby();
  provider_.LeaveStandby();
  ++done_.serverTicks;
}

void StressRuntime::ActivateNewDevices() {
  const std::uint32_t count = deviceCount_;
  for (std::uint32_t index = 0; index < count; ++index) {
    if (devices_[index].isActivated.exchange(true, std::memory_order_relaxed)) continue;
    devices_[index].driver->Activate(index);
    ++done_.activations;
  }
}

bool StressRuntime::NextEvent(vr::VREvent_t* event) {
  const std::uint32_t count = deviceCount_;
  if (!isVibrationDue_.exchange(false, std::memory_order_relaxed) || count < 3) return false;
  const std::uint32_t index = 1 + done_.vibrations++ % (count - 1);
  event->eventType = vr::VREvent_Input_HapticVibration;
  event->data.hapticVibration.containerHandle = bench::FakeProperties::ContainerOf(index);
  event->data.hapticVibration.fDurationSeconds = 0.003F;
  return true;
}

void StressRuntime::PresentFrame() {
  if (virtual_ != nullptr) {
    vr::PresentInfo_t info{};
    info.backbufferTextureHandle = 7;
    virtual_->Present(&info, sizeof(info));
    virtual_->WaitForPresent();
    float seconds = 0.0F;
    std::uint64_t presents = 0;
    virtual_->GetTimeSinceLastVsync(&seconds, &presents);
  } else {
    SubmitLayers();
    direct_->Present(7);
    direct_->PostPresent();
  }
  ++done_.frames;
}

void StressRuntime::SubmitLayers() {
  const std::uint32_t number = 1 + submissions_++;
  vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2]{};
  for (std::uint32_t eye = 0; eye < 2; ++eye) {
    eyes[eye].hTexture = 2 * number + eye;
    eyes[eye].bounds = {0, 0, static_cast<float>(number), 1};
  }
  const vr::HmdMatrix34_t pose{};
  for (int layer = 0; layer < 2; ++layer) direct_->SubmitLayer(eyes, &pose);
}

void StressRuntime::ChangeSwapTextures() {
  if (direct_ == nullptr) return;
  const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t desc{
      .nWidth = 8, .nHeight = 8, .nFormat = 28, .nSampleCount = 1};
  vr::SharedTextureHandle_t handles[3]{};
  const std::uint32_t processId = 1 + done_.swapSets % 2;
  direct_->CreateSwapTextureSet(processId, &desc, &handles);
  std::uint32_t indices[2]{};
  direct_->GetNextSwapTextureSetIndex(handles, &indices);
  vr::DriverDirectMode_FrameTiming timing{};
  direct_->GetFrameTiming(&timing);
  if (done_.swapSets++ % 4 == 0) {
    direct_->DestroyAllSwapTextureSets(processId);
  } else {
    direct_->DestroySwapTextureSet(handles[1]);
  }
}

void StressRuntime::UseDevices() {
  const std::uint32_t count = deviceCount_;
  for (std::uint32_t index = 0; index < count; ++index) {
    for (int times = 0; times < kAsksInARow; ++times) AskForPose(devices_[index]);
    MakeOtherCalls(index);
  }
}

StressRuntime::PoseCounts StressRuntime::CountsOf(const Device& device) {
  switch (device.deviceClass) {
    case vr::TrackedDeviceClass_HMD:
      return {done_.headPosesSent, done_.headPosesAsked};
    case vr::TrackedDeviceClass_Controller:
      return {done_.controllerPosesSent, done_.controllerPosesAsked};
    default:
      return {done_.sensorPosesSent, done_.sensorPosesAsked};
  }
}

void StressRuntime::AskForPose(const Device& device) {
  vr::DriverPose_t pose{};
  device.driver->GetPose(&pose);
  ++CountsOf(device).asked;
  if (!IsWhole(device.deviceClass, pose)) ++done_.halfPoses;
}

void StressRuntime::MakeOtherCalls(std::uint32_t index) {
  const Device& device = devices_[index];
  char answer[8]{};
  device.driver->EnterStandby();
  device.driver->DebugRequest("what", answer, sizeof(answer));
  static_cast<void>(device.driver->GetComponent(vr::ITrackedDeviceServerDriver_Version));
  if (device.deviceClass == vr::TrackedDeviceClass_HMD) AskDisplay(*device.driver);
  if (!device.isActivated.load(std::memory_order_relaxed)) return;
  device.driver->Deactivate();
  device.driver->Activate(index);
  ++done_.reactivations;
}

void StressRuntime::AskDisplay(vr::ITrackedDeviceServerDriver& headset) {
  auto& display = *static_cast<vr::IVRDisplayComponent*>(headset.GetComponent(vr::IVRDisplayComponent_Version));
  std::int32_t left = 0, top = 0;
  std::uint32_t x = 0, y = 0, width = 0, height = 0;
  float edges[4]{};
  vr::DistortionCoordinates_t distortion{};
  display.GetWindowBounds(&left, &top, &width, &height);
  static_cast<void>(display.IsDisplayOnDesktop());
  static_cast<void>(display.IsDisplayRealDisplay());
  display.GetRecommendedRenderTargetSize(&width, &height);
  display.GetEyeOutputViewport(vr::Eye_Right, &x, &y, &width, &height);
  display.GetProjectionRaw(vr::Eye_Left, &edges[0], &edges[1], &edges[2], &edges[3]);
  display.ComputeDistortion(&distortion, vr::Eye_Left, 0.25F, 0.75F);
}

void StressRuntime::OnPose(const bench::PoseRecord& record) {
  const Device& device = devices_[record.device];
  ++CountsOf(device).sent;
  if (!IsWhole(device.deviceClass, record.pose) || record.structSize != sizeof(record.pose)) ++done_.halfPoses;
}

}  // namespace ombrel::test
