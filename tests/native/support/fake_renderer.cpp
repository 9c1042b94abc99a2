#include "support/fake_renderer.h"

#include <initializer_list>
#include <utility>

namespace ombrel::test {
namespace {

std::string Line(std::string name, std::initializer_list<std::uint64_t> numbers) {
  for (const std::uint64_t number : numbers) name += " " + std::to_string(number);
  return name;
}

std::uint64_t Widened(std::int32_t index) { return static_cast<std::uint64_t>(index); }

}  // namespace

void FakeRenderer::Record(const std::string& line) {
  journal.Add(line);
  if (onCall) onCall(line);
}

void FakeRenderer::Configure(const OutputConfiguration& output) {
  Record(Line("Configure", {output.format, output.width, output.height, output.invertY}));
}

bool FakeRenderer::CreateOutputTextures() {
  Record("CreateOutputTextures");
  ready = canCreateOutputs.load();
  return ready;
}

bool FakeRenderer::RemakeDevice() {
  Record("RemakeDevice");
  if (canRemakeDevice) deviceLost = false;
  return canRemakeDevice;
}

OutputSharing FakeRenderer::Sharing() {
  Record("Sharing");
  return {.handles = {handle0, handle1}, .invertY = invertY};
}

bool FakeRenderer::AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) {
  Record(Line("AcquireOutput", {Widened(index), timeoutMs}));
  return canAcquireOutput;
}

bool FakeRenderer::ReleaseOutput(std::int32_t index) {
  Record(Line("ReleaseOutput", {Widened(index)}));
  return true;
}

bool FakeRenderer::AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) {
  Record(Line("AcquireSyncTexture", {handle, timeoutMs}));
  return canAcquireSync;
}

void FakeRenderer::ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) {
  if (onLayer) onLayer(layer);
  Record(Line("ComposeLayer", {Widened(outputIndex), layer.leftTexture, layer.rightTexture}));
}

void FakeRenderer::ClearOutput(std::int32_t index) { Record(Line("ClearOutput", {Widened(index)})); }

bool FakeRenderer::CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                                std::uint32_t timeoutMs) {
  Record(Line(outputAcquired ? "CopyToOutput" : "SkipCopy", {handle, Widened(outputIndex), timeoutMs}));
  return canCopy;
}

SwapTexture FakeRenderer::CreateSwapTexture(const SwapTextureDesc& desc) {
  Record(Line("CreateSwapTexture", {desc.width, desc.height, desc.format, desc.sampleCount}));
  const std::uint64_t handle = nextSwapHandle ? nextSwapHandle() : ++lastSwapHandle_;
  if (handle == 0) return {};
  ++liveSwapTextures;
  return {.handle = handle, .texture = std::shared_ptr<void>(new int(0), [this](void* texture) {
                              delete static_cast<int*>(texture);
                              --liveSwapTextures;
                            })};
}

void FakeRenderer::RegisterTexture(std::uint64_t handle) { Record(Line("RegisterTexture", {handle})); }

void FakeRenderer::UnregisterTexture(std::uint64_t handle) { Record(Line("UnregisterTexture", {handle})); }

}  // namespace ombrel::test
