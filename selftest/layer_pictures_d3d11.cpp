#include "layer_pictures.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <memory>
#include <stdexcept>

#include "picture/read_image.h"
#include "render/headset_renderer.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace ombrel::selftest {
namespace {

using Microsoft::WRL::ComPtr;

constexpr std::uint32_t kTimeoutMs = 5000;

// The runtime's side: a device of its own.
class Runtime {
 public:
  Runtime() { bench::RequireOk(bench::CreateSharingDevice(&device_, &context_), "making the runtime's device"); }

  void Paint(std::uint64_t handle, const bench::Painter& painter) {
    const auto texture = Open(handle);
    const bench::Image image = bench::Paint(kLayerSide, kLayerSide, painter);
    context_->UpdateSubresource(texture.Get(), 0, nullptr, image.pixels.data(), 4 * kLayerSide, 0);
    bench::RequireOk(bench::PublishSharedTexture(texture.Get()), "publishing a texture");
  }
  bench::Image See(std::uint64_t handle) {
    const auto texture = Open(handle);
    const auto mutex = bench::FindKeyedMutex(texture.Get());
    if (!mutex) throw std::runtime_error("an output without a keyed mutex");
    bench::RequireOk(mutex->AcquireSync(0, kTimeoutMs), "acquiring an output");
    bench::Image image = bench::ReadImage(texture.Get());
    bench::RequireOk(mutex->ReleaseSync(0), "releasing an output");
    return image;
  }

 private:
  ComPtr<ID3D11Texture2D> Open(std::uint64_t handle) {
    auto texture = bench::OpenTexture(*device_.Get(), static_cast<std::uint32_t>(handle));
    if (!texture) throw std::runtime_error("a texture of the driver cannot be opened");
    return texture;
  }

  ComPtr<ID3D11Device> device_;
  ComPtr<ID3D11DeviceContext> context_;
};

std::uint64_t MakeEye(IHeadsetRenderer& renderer, Runtime& runtime, const LayerScene& scene,
                      const bench::Painter& painter, std::vector<SwapTexture>& kept) {
  kept.push_back(renderer.CreateSwapTexture({kLayerSide, kLayerSide, static_cast<std::uint32_t>(scene.format), 1}));
  renderer.RegisterTexture(kept.back().handle);
  runtime.Paint(kept.back().handle, painter);
  return kept.back().handle;
}

EyeBounds BoundsOf(const LayerScene& scene) {
  EyeBounds bounds{};
  for (std::size_t eye = 0; eye < bounds.size(); ++eye) {
    const auto [uMin, vMin, uMax, vMax] = scene.bounds[eye];
    bounds[eye] = {uMin, vMin, uMax, vMax};
  }
  return bounds;
}

bench::Image Draw(const LayerScene& scene) {
  const auto renderer = MakeHeadsetRenderer();
  renderer->CreateDevice();
  renderer->Configure({static_cast<std::uint32_t>(LayerFormat::kRgba), static_cast<std::uint32_t>(scene.outputWidth),
                       kLayerOutputHeight, static_cast<std::uint8_t>(scene.invertY ? 1 : 0)});
  if (!renderer->CreateOutputTextures()) throw std::runtime_error("no output textures");
  Runtime runtime;
  std::vector<SwapTexture> kept;
  const std::uint64_t left = MakeEye(*renderer, runtime, scene, scene.left, kept);
  const std::uint64_t right = MakeEye(*renderer, runtime, scene, scene.right, kept);
  const EyeBounds bounds = BoundsOf(scene);
  if (!renderer->AcquireOutput(0, kTimeoutMs)) throw std::runtime_error("an output that cannot be held");
  renderer->ClearOutput(0);
  renderer->BeginLayers();
  renderer->ComposeLayer(0, {left, right, &bounds});
  if (!renderer->ReleaseOutput(0)) throw std::runtime_error("an output that cannot be given back");
  return runtime.See(renderer->Sharing().handles[0]);
}

}  // namespace

std::vector<LayerPicture> DrawLayerPictures() {
  if (!bench::InterceptModule(GetModuleHandleA(nullptr))) throw std::runtime_error("no import of D3D11CreateDevice");
  std::vector<LayerPicture> pictures;
  for (const LayerScene& scene : LayerScenes()) pictures.push_back({scene, Draw(scene)});
  return pictures;
}

}  // namespace ombrel::selftest
