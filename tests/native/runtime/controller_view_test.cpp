#include "controller_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "toy_session.h"

namespace bench {
namespace {

using testing::ElementsAre;

class ControllerViewTest : public testing::Test {
 protected:
  void SetUp() override { container = toy.AddController("hand"); }

  void SendPose(bool valid) {
    vr::DriverPose_t pose{};
    pose.qWorldFromDriverRotation.w = pose.qDriverFromHeadRotation.w = pose.qRotation.w = 1.0;
    pose.vecPosition[0] = 0.5;
    pose.poseIsValid = valid;
    toy.runtime.Host().TrackedDevicePoseUpdated(toy.session.Devices().back().added.index, pose, sizeof pose);
  }
  void Press(const char* path) {
    vr::VRInputComponentHandle_t handle = 0;
    toy.runtime.Input().CreateBooleanComponent(container, path, &handle);
    toy.runtime.Input().UpdateBooleanComponent(handle, true, 0.0);
  }
  // The wand's side towards the viewer, whose tint is not shaded.
  std::array<float, 3> WandTint() { return BuildControllers(toy.runtime, toy.session).front().tint; }

  ToySession toy;
  vr::PropertyContainerHandle_t container = 0;
};

TEST_F(ControllerViewTest, AControllerIsDrawnOnceItsPoseIsValid) {
  EXPECT_TRUE(BuildControllers(toy.runtime, toy.session).empty());
  SendPose(false);
  EXPECT_TRUE(BuildControllers(toy.runtime, toy.session).empty());
  SendPose(true);
  const Mesh mesh = BuildControllers(toy.runtime, toy.session);
  ASSERT_FALSE(mesh.empty());
  EXPECT_NEAR(mesh.front().position[0], 0.5F, 0.05F);
}

TEST_F(ControllerViewTest, APressChangesItsColour) {
  SendPose(true);
  const auto released = WandTint();
  Press("/input/grip/click");
  EXPECT_NE(WandTint(), released);
  EXPECT_THAT(WandTint(), ElementsAre(0.1F, 1.0F, 0.1F));
}

TEST_F(ControllerViewTest, OfSeveralPressesTheTriggerShows) {
  SendPose(true);
  Press("/input/system/click");
  Press("/input/trigger/click");
  EXPECT_THAT(WandTint(), ElementsAre(1.0F, 0.1F, 0.1F));
}

}  // namespace
}  // namespace bench
