#include "runtime/direct_compositor.h"

#include <stdexcept>

#include "base/clock.h"
#include "sharing/sharing_device.h"

namespace bench {
namespace {

// Linear colours: the driver encodes them.
constexpr DXGI_FORMAT kEyeFormat = DXGI_FORMAT_R8G8B8A8_UNORM;
constexpr std::chrono::milliseconds kSyncTimeout(2000);
constexpr vr::VRTextureBounds_t kWholeTexture = {0.0F, 0.0F, 1.0F, 1.0F};

}  // namespace

vr::IVRDriverDirectModeComponent& DirectModeOf(const ActiveDevice& headset) {
  return *static_cast<vr::IVRDriverDirectModeComponent*>(
      ComponentOf(*headset.added.driver, vr::IVRDriverDirectModeComponent_Version));
}

DirectCompositor::DirectCompositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter,
                                   const Microsoft::WRL::ComPtr<ID3D11Device>& device)
    : Compositor(runtime, headset, painter),
      component_(DirectModeOf(headset)),
      sync_(*device.Get(), 4, 4, kEyeFormat),
      eyes_{CreateSwapSet(*device.Get()), CreateSwapSet(*device.Get())} {}

DirectCompositor::SwapSet DirectCompositor::CreateSwapSet(ID3D11Device& device) {
  const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t description = {Geometry().renderWidth,
                                                                              Geometry().renderHeight, kEyeFormat, 1};
  vr::SharedTextureHandle_t handles[3] = {};
  component_.CreateSwapTextureSet(GetCurrentProcessId(), &description, &handles);
  SwapSet set;
  for (std::size_t index = 0; index < set.handles.size(); ++index) {
    set.handles[index] = handles[index];
    const auto handle = reinterpret_cast<HANDLE>(handles[index]);  // NOLINT(performance-no-int-to-ptr)
    RequireOk(device.OpenSharedResource(handle, IID_PPV_ARGS(&set.textures[index])), "opening a swap texture");
    RequireOk(device.CreateRenderTargetView(set.textures[index].Get(), nullptr, &set.targets[index]),
              "making a swap texture's target");
  }
  return set;
}

void DirectCompositor::DestroySwapSets() {
  for (const SwapSet& set : eyes_) {
    component_.DestroySwapTextureSet(set.handles[0]);
  }
}

void DirectCompositor::PaintEye(vr::EVREye eye, std::uint32_t index, const runtime::PoseMatrix& head) {
  SwapSet& set = eyes_[static_cast<std::size_t>(eye)];
  EyeView view = ViewOf(eye, head);
  view.target = set.targets.at(index).Get();
  view.targetWidth = Geometry().renderWidth;
  view.targetHeight = Geometry().renderHeight;
  view.viewport = {0.0F, 0.0F, static_cast<float>(view.targetWidth), static_cast<float>(view.targetHeight), 0.0F, 1.0F};
  Painter().PaintEye(view);
  RequireOk(PublishSharedTexture(set.textures.at(index).Get()), "publishing a swap texture");
}

void DirectCompositor::HandOver(FrameReport& report) {
  vr::SharedTextureHandle_t handles[2] = {eyes_[0].handles.at(indices_[0]), eyes_[1].handles.at(indices_[1])};
  std::uint32_t indices[2] = {indices_[0], indices_[1]};
  component_.GetNextSwapTextureSetIndex(handles, &indices);
  indices_ = {indices[0], indices[1]};

  const std::int64_t begin = NowTicks();
  if (!sync_.Acquire(kSyncTimeout)) {
    throw std::runtime_error("the driver did not give the sync texture back");
  }
  report.syncWaitTicks = NowTicks() - begin;
  PaintEye(vr::Eye_Left, indices_[0], report.pose);
  PaintEye(vr::Eye_Right, indices_[1], report.pose);
  sync_.Release();

  vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t layer[2] = {};
  for (std::size_t eye = 0; eye < eyes_.size(); ++eye) {
    layer[eye].hTexture = eyes_[eye].handles.at(indices_[eye]);
    layer[eye].bounds = kWholeTexture;
    layer[eye].mProjection = ViewOf(static_cast<vr::EVREye>(eye), report.pose).projection;
  }
  component_.SubmitLayer(layer, &report.pose);
  report.presentTicks = NowTicks();
  component_.Present(sync_.Handle());
  report.presentedTicks = NowTicks();
}

void DirectCompositor::AfterPresent(const FrameReport&) {
  component_.PostPresent();
  vr::DriverDirectMode_FrameTiming timing{};
  timing.m_nSize = sizeof timing;
  component_.GetFrameTiming(&timing);
}

}  // namespace bench
