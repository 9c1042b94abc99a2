#include <gmock/gmock.h>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class ProximityTest : public DriverTest {
 protected:
  std::size_t Updates() { return runtime.Input().Updates().size(); }
};

TEST_F(ProximityTest, IsCreatedAndSetOnActivation) {
  InitAndActivateHeadset();
  const auto component = runtime.Input().Find(bench::FakeProperties::ContainerOf(0), "/proximity");
  ASSERT_TRUE(component.has_value());
  EXPECT_EQ(component->kind, bench::InputKind::Boolean);
  ASSERT_EQ(Updates(), 1U);
  const auto update = runtime.Input().Updates()[0];
  EXPECT_EQ(update.handle, component->handle);
  EXPECT_TRUE(update.boolValue);
  EXPECT_EQ(update.timeOffset, 0.0);
}

TEST_F(ProximityTest, IsReportedOnEveryFrame) {
  InitAndActivateHeadset();
  for (int frame = 0; frame < 3; ++frame) Provider().RunFrame();
  ASSERT_EQ(Updates(), 4U);
  for (const auto& update : runtime.Input().Updates()) {
    EXPECT_EQ(update.path, "/proximity");
    EXPECT_TRUE(update.boolValue);
    EXPECT_EQ(update.timeOffset, 0.0);
  }
}

TEST_F(ProximityTest, IsNotReportedBeforeActivation) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Provider().RunFrame();
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(ProximityTest, IsNotReportedAfterDeactivation) {
  InitAndActivateHeadset();
  Headset().Deactivate();
  Provider().RunFrame();
  EXPECT_EQ(Updates(), 1U);
}

TEST_F(ProximityTest, FailureIsLoggedAndNoValueIsEverSent) {
  runtime.Input().FailCreate("/proximity", vr::VRInputError_NameNotFound, 12345);
  InitAndActivateHeadset();
  EXPECT_THAT(LogLines().back(), "Error while creating proximity sensor: 1 \n");
  Provider().RunFrame();
  EXPECT_EQ(Updates(), 0U);
  EXPECT_EQ(runtime.Poses().Count(0), 1U) << "the activation goes on";
}

TEST_F(ProximityTest, FailureIsLoggedWithItsNumber) {
  runtime.Input().FailCreate("/proximity", vr::VRInputError_InvalidParam);
  InitAndActivateHeadset();
  EXPECT_EQ(LogLines().back(),
            "Error while creating proximity sensor: " + std::to_string(vr::VRInputError_InvalidParam) + " \n");
}

TEST_F(ProximityTest, RuntimeWithoutInputsDoesNotEndTheActivation) {
  runtime.Withhold("IVRDriverInput_001");
  InitAndActivateHeadset();
  Provider().RunFrame();
  EXPECT_EQ(runtime.Poses().Count(0), 1U);
}

}  // namespace
}  // namespace ombrel::test
