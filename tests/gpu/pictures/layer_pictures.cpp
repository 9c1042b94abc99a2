#include "layer_pictures.h"

#include <dxgiformat.h>

#include <memory>
#include <stdexcept>

#include "gpu_support/runtime_side.h"
#include "render/headset_renderer.h"
#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

constexpr std::uint32_t kTimeoutMs = 5000;
constexpr EyeBounds kWhole{{{0, 0, 1, 1}, {0, 0, 1, 1}}};

// What the runtime hands over, and what is made of it.
struct Scene {
  std::string name;
  Painter left, right;
  EyeBounds bounds = kWhole;
  std::uint32_t format = DXGI_FORMAT_R8G8B8A8_UNORM;
  std::uint32_t outputWidth = 256;
  std::uint8_t invertY = 0;
};

// Every level of a channel, and of another one the other way round.
bench::Rgba Levels(int x, int y) {
  const auto across = static_cast<std::uint8_t>(2 * x), down = static_cast<std::uint8_t>(2 * y);
  return {across, down, static_cast<std::uint8_t>(255 - across), static_cast<std::uint8_t>(255 - down)};
}

std::vector<Scene> Scenes() {
  const EyeBounds part{{{0.1F, 0.2F, 0.83F, 0.71F}, {0.5F, 0, 1, 0.5F}}};
  const EyeBounds flipped{{{0, 1, 1, 0}, {1, 0, 0, 1}}};
  return {{.name = "levels", .left = Levels, .right = Pattern(1)},
          {.name = "typeless_rgba", .left = Levels, .right = Pattern(2), .format = DXGI_FORMAT_R8G8B8A8_TYPELESS},
          {.name = "typeless_bgra", .left = Levels, .right = Pattern(3), .format = DXGI_FORMAT_B8G8R8A8_TYPELESS},
          {.name = "srgb", .left = Levels, .right = Pattern(4), .format = DXGI_FORMAT_R8G8B8A8_UNORM_SRGB},
          {.name = "enlarged_part", .left = Levels, .right = Levels, .bounds = part},
          {.name = "flipped", .left = Levels, .right = Pattern(5), .bounds = flipped},
          {.name = "shrunk", .left = Levels, .right = Levels, .outputWidth = 142},
          {.name = "odd_width", .left = Levels, .right = Pattern(6), .outputWidth = 257},
          {.name = "inverted", .left = Levels, .right = Pattern(7), .invertY = 1}};
}

std::uint64_t MakeTexture(IHeadsetRenderer& renderer, RuntimeSide& runtime, std::uint32_t format,
                          const Painter& painter, std::vector<SwapTexture>& kept) {
  constexpr std::uint32_t kSide = 128;
  kept.push_back(renderer.CreateSwapTexture({kSide, kSide, format, 1}));
  renderer.RegisterTexture(kept.back().handle);
  runtime.Paint(kept.back().handle, painter);
  return kept.back().handle;
}

bench::Image DrawScene(const Scene& scene) {
  const auto renderer = MakeHeadsetRenderer();
  renderer->CreateDevice();
  renderer->Configure({DXGI_FORMAT_R8G8B8A8_UNORM, scene.outputWidth, 128, scene.invertY});
  if (!renderer->CreateOutputTextures()) throw std::runtime_error("no output textures");
  RuntimeSide runtime;
  std::vector<SwapTexture> kept;
  const std::uint64_t left = MakeTexture(*renderer, runtime, scene.format, scene.left, kept);
  const std::uint64_t right = MakeTexture(*renderer, runtime, scene.format, scene.right, kept);
  if (!renderer->AcquireOutput(0, kTimeoutMs)) throw std::runtime_error("an output that cannot be held");
  renderer->ClearOutput(0);
  renderer->BeginLayers();
  renderer->ComposeLayer(0, {left, right, &scene.bounds});
  if (!renderer->ReleaseOutput(0)) throw std::runtime_error("an output that cannot be given back");
  return runtime.See(renderer->Sharing().handles[0]);
}

}  // namespace

std::vector<NamedPicture> DrawLayerPictures() {
  if (!bench::InterceptModule(GetModuleHandleA(nullptr))) throw std::runtime_error("no import of D3D11CreateDevice");
  std::vector<NamedPicture> pictures;
  for (const Scene& scene : Scenes()) pictures.push_back({scene.name, DrawScene(scene)});
  return pictures;
}

}  // namespace ombrel::test
