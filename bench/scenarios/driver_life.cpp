#include "driver_life.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

#include "runtime/msvc_calls.h"
#include "runtime/small_picture.h"
#include "sharing/sharing_device.h"

namespace bench::scenarios {
namespace {

std::atomic<std::int64_t> setsMade = 0;
std::unique_ptr<DriverLife> shared;

constexpr std::size_t kKept = 100;  // of what the stand-in writes down

void Intercept(void* module) {
  if (!InterceptModule(static_cast<HMODULE>(module))) throw std::runtime_error("no import of D3D11CreateDevice");
}

}  // namespace

DriverLife::DriverLife(ScenarioRun& run, Mode mode, const AfterLoad& afterLoad)
    : calls_(run.calls),
      mode_(mode),
      module_(run.driver,
              [&](void* module) {
                Intercept(module);
                if (afterLoad) afterLoad(module);
              }),
      provider_(&module_.Provider()) {
  runtime.Settings().SetDefaults(SmallPictureSettings(static_cast<int>(mode)));
  runtime.Journal().LimitMemory(kKept);
  runtime.Poses().LimitMemory(kKept);
  runtime.Input().LimitMemory(kKept);
}

DriverLife::~DriverLife() {
  Cleanup();
  Unload();
}

DriverLife& DriverLife::Shared(ScenarioRun& run) {
  if (!shared) {
    shared = std::make_unique<DriverLife>(run);
    shared->Start();
  }
  return *shared;
}

void DriverLife::EndShared() { shared.reset(); }

vr::EVRInitError DriverLife::Init() {
  const std::size_t before = runtime.Host().Added().size();
  const vr::EVRInitError result = calls_.Timed("Init", [this] { return provider_->Init(&runtime); });
  if (result != vr::VRInitError_None) return result;
  headset_ = runtime.Host().Added().at(before).driver;
  if (mode_ == Mode::kLayers) {
    direct_ = static_cast<vr::IVRDriverDirectModeComponent*>(Component(vr::IVRDriverDirectModeComponent_Version));
  } else {
    display_ = static_cast<vr::IVRVirtualDisplay*>(Component(vr::IVRVirtualDisplay_Version));
  }
  return result;
}

void DriverLife::ActivatePending() {
  for (const AddedDevice& added : runtime.Host().TakePending()) {
    calls_.Timed("Activate", [&] { return added.driver->Activate(added.index); });
  }
}

void DriverLife::Start() {
  if (const auto result = Init(); result != vr::VRInitError_None) {
    throw std::runtime_error("Init declines with " + std::to_string(result));
  }
  ActivatePending();
}

void DriverLife::RunFrame() {
  calls_.Timed("RunFrame", [this] { provider_->RunFrame(); });
}

void DriverLife::Cleanup() {
  if (provider_ == nullptr) return;
  calls_.Timed("Cleanup", [this] { provider_->Cleanup(); });
  headset_ = nullptr;
  oneSet_.reset();
}

void DriverLife::Unload() {
  provider_ = nullptr;
  if (module_.Handle() != nullptr) calls_.Timed("FreeLibrary", [this] { module_.Unload(); });
}

void DriverLife::UnloadWithoutCleanup() {
  calls_.Timed("FreeLibrary", [this] { module_.Unload(); });
}

void* DriverLife::Component(const char* name) {
  return calls_.Timed("GetComponent", [&] { return headset_->GetComponent(name); });
}

vr::DriverPose_t DriverLife::Pose() {
  return calls_.Timed("GetPose", [this] { return CallGetPose(headset_); });
}

std::optional<AddedDevice> DriverLife::Controller(std::uint32_t controllerId) {
  const auto added = runtime.Host().Added();
  const std::string serial = "OmbrelControllerV02ID" + std::to_string(controllerId);
  const auto found = std::ranges::find(added, serial, &AddedDevice::serial);
  return found != added.end() ? std::optional(*found) : std::nullopt;
}

std::int64_t DriverLife::SetsMade() { return setsMade; }

const DriverLife::SwapSet& DriverLife::OneSwapSet() {
  if (!oneSet_) oneSet_ = CreateSwapSet();
  return *oneSet_;
}

void DriverLife::RenewSwapSet() {
  DestroySwapSet(OneSwapSet()[0]);
  oneSet_ = CreateSwapSet();
}

DriverLife::SwapSet DriverLife::CreateSwapSet(std::uint32_t processId) {
  const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t desc{32, 24, DXGI_FORMAT_R8G8B8A8_UNORM, 1};
  vr::SharedTextureHandle_t handles[3]{};
  calls_.Timed("CreateSwapTextureSet", [&] { direct_->CreateSwapTextureSet(processId, &desc, &handles); });
  ++setsMade;
  return {handles[0], handles[1], handles[2]};
}

void DriverLife::DestroySwapSet(vr::SharedTextureHandle_t handle) {
  calls_.Timed("DestroySwapTextureSet", [&] { direct_->DestroySwapTextureSet(handle); });
}

void DriverLife::SubmitLayer(vr::SharedTextureHandle_t eye, float number) {
  vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2]{};
  for (auto& one : eyes) {
    one.hTexture = eye;
    one.bounds = {0.0F, 0.0F, 1.0F, 1.0F};
  }
  const vr::HmdMatrix34_t pose{{{1, 0, 0, number}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
  calls_.Timed("SubmitLayer", [&] { direct_->SubmitLayer(eyes, &pose); });
}

void DriverLife::Present(vr::SharedTextureHandle_t texture) {
  if (mode_ == Mode::kLayers) {
    calls_.Timed("Present (layers)", [&] { direct_->Present(texture); });
    return;
  }
  vr::PresentInfo_t info{};
  info.backbufferTextureHandle = texture;
  calls_.Timed("Present (texture)", [&] { display_->Present(&info, sizeof(info)); });
}

void DriverLife::WaitForNext() {
  if (mode_ == Mode::kLayers) {
    calls_.Timed("PostPresent", [this] { direct_->PostPresent(); });
  } else {
    calls_.Timed("WaitForPresent", [this] { display_->WaitForPresent(); });
  }
}

}  // namespace bench::scenarios
