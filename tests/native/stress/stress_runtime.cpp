#include "stress_runtime.h"

#include <utility>

#include "context/driver_context.h"
#include "support/tell_tale.h"

namespace ombrel::test {
namespace {

// Often enough to meet one that is being written.
constexpr int kAsksInARow = 50;

}  // namespace

StressRuntime::StressRuntime(std::int32_t hmdMode) { SetHooks(hmdMode); }

StressRuntime::~StressRuntime() {
  Stop();
  Context().Clear();
}

void StressRuntime::SetHooks(std::int32_t hmdMode) {
  host_.hmdMode = hmdMode;
  host_.onDeviceAdded = [this](auto deviceClass, auto* device) {
    const std::lock_guard guard(devicesMutex_);
    devices_.push_back({device, deviceClass == vr::TrackedDeviceClass_HMD, false});
  };
  host_.onPose = [this](std::uint32_t index, const auto& pose, std::uint32_t size) { OnPose(index, pose, size); };
  host_.onBoolean = [this](auto, bool) { ++done_.inputs; };
  host_.onScalar = [this](auto, float) { ++done_.inputs; };
  host_.onProperty = [this](auto, const vr::PropertyWrite_t& write) {
    if (write.prop == vr::Prop_DisplayFrequency_Float) ++done_.frequencies;
  };
  host_.nextEvent = [this](vr::VREvent_t* event) { return NextEvent(event); };
  host_.onVsync = [this] { ++done_.vsyncs; };
}

bool StressRuntime::Start() {
  devices_.clear();
  if (provider_.Init(&host_) != vr::VRInitError_None) return false;
  vr::ITrackedDeviceServerDriver* headset = Devices().front().driver;
  direct_ =
      static_cast<vr::IVRDriverDirectModeComponent*>(headset->GetComponent(vr::IVRDriverDirectModeComponent_Version));
  virtual_ = static_cast<vr::IVRVirtualDisplay*>(headset->GetComponent(vr::IVRVirtualDisplay_Version));
  return (direct_ != nullptr) != (virtual_ != nullptr);
}

void StressRuntime::Tick() {
  ActivateNewDevices();
  isVibrationDue_ = true;
  provider_.RunFrame();
  ++done_.serverTicks;
}

void StressRuntime::ActivateNewDevices() {
  const std::vector<Device> devices = Devices();
  for (std::uint32_t index = 0; index < devices.size(); ++index) {
    if (devices[index].isActivated) continue;
    devices[index].driver->Activate(index);
    ++done_.activations;
    const std::lock_guard guard(devicesMutex_);
    devices_[index].isActivated = true;
  }
}

bool StressRuntime::NextEvent(vr::VREvent_t* event) {
  const std::size_t devices = Devices().size();
  if (!std::exchange(isVibrationDue_, false) || devices < 2) return false;
  const auto index = static_cast<std::uint32_t>(1 + done_.vibrations++ % (devices - 1));
  event->eventType = vr::VREvent_Input_HapticVibration;
  event->data.hapticVibration.containerHandle = HookedRuntime::ContainerOf(index);
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
  frame_ += 1.0F;
  vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2]{};
  for (std::uint64_t eye = 0; eye < 2; ++eye) {
    eyes[eye].hTexture = static_cast<std::uint64_t>(2.0F * frame_) + eye;
    eyes[eye].bounds = {0, 0, frame_, 1};
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
  vr::DriverDirectMode_FrameTiming timing{};
  direct_->GetFrameTiming(&timing);
  if (done_.swapSets++ % 4 == 0) {
    direct_->DestroyAllSwapTextureSets(processId);
  } else {
    direct_->DestroySwapTextureSet(handles[1]);
  }
}

void StressRuntime::AskForPoses() {
  for (const Device& device : Devices()) {
    for (int times = 0; times < kAsksInARow; ++times) AskForPose(device);
  }
}

void StressRuntime::AskForPose(const Device& device) {
  vr::DriverPose_t pose{};
  device.driver->GetPose(&pose);
  ++(device.isHeadset ? done_.headPosesAsked : done_.controllerPosesAsked);
  if (!(device.isHeadset ? IsWholeHeadPose(pose) : IsWholeControllerPose(pose))) ++done_.halfPoses;
}

void StressRuntime::OnPose(std::uint32_t index, const vr::DriverPose_t& pose, std::uint32_t size) {
  const bool isHeadset = index == 0;
  ++(isHeadset ? done_.headPosesSent : done_.controllerPosesSent);
  const bool isWhole = isHeadset ? IsWholeHeadPose(pose) : IsWholeControllerPose(pose);
  if (!isWhole || size != sizeof(pose)) ++done_.halfPoses;
}

std::vector<StressRuntime::Device> StressRuntime::Devices() const {
  const std::lock_guard guard(devicesMutex_);
  return devices_;
}

}  // namespace ombrel::test
