#pragma once

#include <array>

#include "driver_fixture.h"

namespace ombrel::test {

// A headset that gets its frames in layers.
class DirectTest : public DriverTest {
 protected:
  static constexpr vr::VRTextureBounds_t kWholeTexture{0.0F, 0.0F, 1.0F, 1.0F};

  DirectTest() : DriverTest(0) {}

  [[nodiscard]] vr::IVRDriverDirectModeComponent& Direct() const;

  // A texture of a new set, painted.
  vr::SharedTextureHandle_t MakeEye(const Painter& painter);
  vr::SharedTextureHandle_t MakeEye(const bench::Rgba& rgba) { return MakeEye(OneColour(rgba)); }

  void SubmitLayer(vr::SharedTextureHandle_t left, vr::SharedTextureHandle_t right,
                   const std::array<vr::VRTextureBounds_t, 2>& bounds = {kWholeTexture, kWholeTexture},
                   const vr::HmdMatrix34_t& pose = PoseNumber(0));
  void SubmitLayer(vr::SharedTextureHandle_t both, const vr::HmdMatrix34_t& pose) {
    SubmitLayer(both, both, {kWholeTexture, kWholeTexture}, pose);
  }

  // Presents until the driver hands a frame to the companion: once while streaming is under way, more often while a
  // connection is being set up. False when that takes too long.
  [[nodiscard]] bool HandOver(vr::SharedTextureHandle_t syncTexture = 0);

  // A pose unlike those of other numbers, and how the companion finds it beside a frame.
  [[nodiscard]] static vr::HmdMatrix34_t PoseNumber(int number);
  [[nodiscard]] static companion::PoseSlot SlotOfPose(int number);
};

}  // namespace ombrel::test
