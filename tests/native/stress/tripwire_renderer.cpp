#include "tripwire_renderer.h"

#include <utility>

namespace ombrel {

std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer() { return std::make_unique<test::TripwireRenderer>(); }

namespace test {
namespace {

Counter losses;

}  // namespace

TripwireRenderer::Work& TripwireRenderer::Done() {
  static Work work;
  return work;
}

void TripwireRenderer::Forget() {
  Work& work = Done();
  for (auto* count : {&work.setUps, &work.remakes, &work.layers, &work.copies, &work.swapTextures, &work.mixedLayers})
    count->Reset();
}

TripwireRenderer::TripwireRenderer() : lossesMended_(losses) {}

void TripwireRenderer::LoseDevices() { ++losses; }

bool TripwireRenderer::IsDeviceLost() { return losses != lossesMended_; }

bool TripwireRenderer::RemakeDevice() {
  ++touched_;
  ++Done().remakes;
  lossesMended_ = losses;
  return true;
}

void TripwireRenderer::Configure(const OutputConfiguration& output) { output_ = output; }

bool TripwireRenderer::CreateOutputTextures() {
  ++touched_;
  ++Done().setUps;
  return ready_ = output_.width > 0;
}

OutputSharing TripwireRenderer::Sharing() {
  ++touched_;
  return {.handles = {0x40000002, 0x40000006}, .invertY = output_.invertY};
}

bool TripwireRenderer::AcquireOutput(std::int32_t /*index*/, std::uint32_t /*timeoutMs*/) {
  ++touched_;
  return true;
}

bool TripwireRenderer::ReleaseOutput(std::int32_t /*index*/) {
  ++touched_;
  return true;
}

bool TripwireRenderer::AcquireSyncTexture(std::uint64_t /*handle*/, std::uint32_t /*timeoutMs*/) {
  ++touched_;
  return true;
}

void TripwireRenderer::ComposeLayer(std::int32_t /*outputIndex*/, const LayerRecord& layer) {
  ++touched_;
  ++Done().layers;
  // Layers that have waited for the link have the last one's bounds, but those are of one submission.
  const EyeBounds& bounds = *layer.bounds;
  const bool isWhole = layer.rightTexture == layer.leftTexture + 1 && bounds[0].uMax == bounds[1].uMax;
  if (!isWhole) ++Done().mixedLayers;
}

void TripwireRenderer::ClearOutput(std::int32_t /*index*/) { ++touched_; }

bool TripwireRenderer::CopyToOutput(std::uint64_t /*handle*/, std::int32_t /*outputIndex*/, bool /*outputAcquired*/,
                                    std::uint32_t /*timeoutMs*/) {
  ++touched_;
  ++Done().copies;
  return true;
}

SwapTexture TripwireRenderer::CreateSwapTexture(const SwapTextureDesc& /*desc*/) {
  ++Done().swapTextures;
  return {.handle = 100 + lastHandle_++, .texture = std::make_shared<int>(0)};
}

}  // namespace test
}  // namespace ombrel
