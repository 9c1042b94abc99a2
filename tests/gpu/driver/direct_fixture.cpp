#include "direct_fixture.h"

#include <algorithm>
#include <stdexcept>

namespace ombrel::test {

vr::IVRDriverDirectModeComponent& DirectTest::Direct() const {
  void* const component = Component(vr::IVRDriverDirectModeComponent_Version);
  if (component == nullptr) throw std::runtime_error("the headset has no direct-mode component");
  return *static_cast<vr::IVRDriverDirectModeComponent*>(component);
}

vr::SharedTextureHandle_t DirectTest::MakeEye(const Painter& painter) {
  const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t desc{32, 24, kFormat, 1};
  vr::SharedTextureHandle_t handles[3]{};
  Direct().CreateSwapTextureSet(1, &desc, &handles);
  application.Paint(handles[0], painter);
  return handles[0];
}

void DirectTest::SubmitLayer(vr::SharedTextureHandle_t left, vr::SharedTextureHandle_t right,
                             const std::array<vr::VRTextureBounds_t, 2>& bounds, const vr::HmdMatrix34_t& pose) {
  vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2]{};
  eyes[0].hTexture = left;
  eyes[0].bounds = bounds[0];
  eyes[1].hTexture = right;
  eyes[1].bounds = bounds[1];
  Direct().SubmitLayer(eyes, &pose);
}

bool DirectTest::HandOver(vr::SharedTextureHandle_t syncTexture) {
  const std::size_t before = OutputsReleased();
  return bench::WaitUntil(
      [&] {
        Direct().Present(syncTexture);
        return OutputsReleased() > before;
      },
      kPatience);
}

vr::HmdMatrix34_t DirectTest::PoseNumber(int number) {
  vr::HmdMatrix34_t pose{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      pose.m[row][column] = static_cast<float>(1000 * number + 10 * row + column) / 8.0F;
    }
  }
  return pose;
}

companion::PoseSlot DirectTest::SlotOfPose(int number) {
  const vr::HmdMatrix34_t pose = PoseNumber(number);
  companion::PoseSlot slot{};
  std::copy_n(&pose.m[0][0], 12, slot.begin());
  slot[15] = 1.0F;
  return slot;
}

}  // namespace ombrel::test
