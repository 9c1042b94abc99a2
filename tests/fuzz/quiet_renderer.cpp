#include "quiet_renderer.h"

#include "one_thread/world.h"

namespace ombrel {

std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer() { return std::make_unique<test::QuietRenderer>(); }

namespace test {
namespace {

void CheckIndex(std::int32_t index) {
  if (index != 0 && index != 1) GiveUp("an output that is not there");
}

void CheckTimeout(std::uint32_t timeoutMs) {
  if (timeoutMs > 1000) GiveUp("a wait of more than a second for a texture");
}

}  // namespace

bool QuietRenderer::AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) {
  CheckIndex(index);
  CheckTimeout(timeoutMs);
  return true;
}

bool QuietRenderer::ReleaseOutput(std::int32_t index) {
  CheckIndex(index);
  return true;
}

bool QuietRenderer::AcquireSyncTexture(std::uint64_t /*handle*/, std::uint32_t timeoutMs) {
  CheckTimeout(timeoutMs);
  return true;
}

void QuietRenderer::ComposeLayer(std::int32_t outputIndex, const LayerRecord& /*layer*/) { CheckIndex(outputIndex); }

void QuietRenderer::ClearOutput(std::int32_t index) { CheckIndex(index); }

bool QuietRenderer::CopyToOutput(std::uint64_t /*handle*/, std::int32_t outputIndex, bool /*outputAcquired*/,
                                 std::uint32_t timeoutMs) {
  CheckIndex(outputIndex);
  CheckTimeout(timeoutMs);
  return true;
}

}  // namespace test
}  // namespace ombrel
