#include "render/direct_mode_component.h"

#include <cstring>
#include <mutex>
#include <utility>

#include "context/driver_log.h"
#include "platform/guarded.h"

namespace ombrel {
namespace {

constexpr std::uint32_t kTexturesPerSet = 3;
static_assert(sizeof(vr::DriverDirectMode_FrameTiming) == 20);
static_assert(sizeof(vr::VRTextureBounds_t) == sizeof(TextureBounds));

TextureBounds ToBounds(const vr::VRTextureBounds_t& bounds) {
  return {bounds.uMin, bounds.vMin, bounds.uMax, bounds.vMax};
}

vr::DriverDirectMode_FrameTiming InitialTiming() {
  vr::DriverDirectMode_FrameTiming timing{};
  timing.m_nSize = sizeof(timing);
  return timing;
}

}  // namespace

DirectModeComponent::DirectModeComponent(OmbrelCore& core, ISwapTextureDevice& textures)
    : core_(core), textures_(textures), frameTiming_(InitialTiming()) {
  // For good, so that no frame allocates.
  for (Frame& frame : frames_) frame.layers.reserve(kMostLayers);
  Log("Creating Direct driver component \n");
}

void DirectModeComponent::CreateSwapTextureSet(std::uint32_t unPid, const SwapTextureSetDesc_t* desc,
                                               vr::SharedTextureHandle_t (*handles)[kTexturesPerSet]) {
  Log("Create swap requested, w: %d, h: %d, format: %d samples: %d \n", static_cast<int>(desc->nWidth),
      static_cast<int>(desc->nHeight), static_cast<int>(desc->nFormat), static_cast<int>(desc->nSampleCount));
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  const std::uint32_t setId = nextSetId_++;
  Guarded([&] {
    // Never freed: compatibility.md, C41.
    [[maybe_unused]] const auto* const leftBehind = new std::int32_t(0);
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
    const SwapTextureDesc wanted{desc->nWidth, desc->nHeight, desc->nFormat, desc->nSampleCount};
    std::array<SwapTexture, kTexturesPerSet> made;
    for (std::uint32_t i = 0; i < kTexturesPerSet; ++i) {
      made[i] = textures_.CreateSwapTexture(wanted);
      (*handles)[i] = made[i].handle;
    }
    const std::lock_guard sets(setsMutex_);
    for (const SwapTexture& texture : made) {
      if (texture.handle == 0) continue;
      swapTextures_.Add(texture, unPid, setId);
      textures_.RegisterTexture(texture.handle);
    }
  });
}

void DirectModeComponent::DestroySwapTextureSet(vr::SharedTextureHandle_t sharedTextureHandle) {
  Log("Destroy set: %d\n", static_cast<int>(sharedTextureHandle));
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  Guarded([&] {
    const std::lock_guard sets(setsMutex_);
    swapTextures_.RemoveSet(swapTextures_.FindSet(sharedTextureHandle),
                            [this](std::uint64_t handle) { textures_.UnregisterTexture(handle); });
  });
}

void DirectModeComponent::DestroyAllSwapTextureSets(std::uint32_t unPid) {
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  Guarded([&] {
    const std::lock_guard sets(setsMutex_);
    swapTextures_.RemoveProcess(unPid, [this](std::uint64_t handle) { textures_.UnregisterTexture(handle); });
  });
}

void DirectModeComponent::GetNextSwapTextureSetIndex(vr::SharedTextureHandle_t* /*sharedTextureHandles*/,
                                                     std::uint32_t (*indices)[2]) {
  for (std::uint32_t& index : *indices) index = (index + 1) % kTexturesPerSet;
}

void DirectModeComponent::SubmitLayer(const SubmitLayerPerEye_t (&perEye)[2], const vr::HmdMatrix34_t* pose) {
  static_assert(sizeof(*pose) == 12 * sizeof(float));
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  const std::lock_guard lock(frameMutex_);
  if (submitted_->layers.empty()) std::memcpy(framePose_.data(), pose, sizeof(*pose));
  submitted_->Add(perEye[0].hTexture, perEye[1].hTexture, {ToBounds(perEye[0].bounds), ToBounds(perEye[1].bounds)});
}

void DirectModeComponent::Frame::Add(std::uint64_t leftTexture, std::uint64_t rightTexture, const EyeBounds& newest) {
  if (layers.size() >= kMostLayers) layers.erase(layers.begin());
  // Shared by all layers of the frame: compatibility.md, C38.
  layers.push_back({leftTexture, rightTexture, &bounds});
  bounds = newest;
}

void DirectModeComponent::Present(vr::SharedTextureHandle_t syncTexture) {
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  const std::lock_guard present(presentMutex_);
  const FramePose pose = TakeFrame();
  Guarded([&] { core_.Frames().HandOffLayers(syncTexture, presented_->layers, pose); });
  FinishFrame(pose);
}

// From here on layers are the next frame's.
FramePose DirectModeComponent::TakeFrame() {
  const std::lock_guard lock(frameMutex_);
  presentIndex_ = (presentIndex_ + 1) % kTexturesPerSet;
  std::swap(submitted_, presented_);
  return framePose_;
}

void DirectModeComponent::FinishFrame(const FramePose& pose) {
  const std::lock_guard lock(frameMutex_);
  ++frameTiming_.m_nNumFramePresents;
  if (presented_->layers.empty()) return;
  // With the link down the frame goes on growing: what was submitted meanwhile belongs behind its layers.
  for (const LayerRecord& layer : submitted_->layers) {
    presented_->Add(layer.leftTexture, layer.rightTexture, submitted_->bounds);
  }
  submitted_->layers.clear();
  std::swap(submitted_, presented_);
  framePose_ = pose;
}

void DirectModeComponent::PostPresent() {
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  Guarded([&] { core_.Pacer().WaitForNextFrame(); });
}

void DirectModeComponent::GetFrameTiming(vr::DriverDirectMode_FrameTiming* pFrameTiming) {
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  const std::lock_guard lock(frameMutex_);
  // Tells nothing back: compatibility.md, C40.
  frameTiming_ = *pFrameTiming;
}

}  // namespace ombrel
