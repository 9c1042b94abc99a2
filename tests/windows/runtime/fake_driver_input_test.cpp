#include "runtime/fake_driver_input.h"

#include <gtest/gtest.h>

#include "runtime/fake_properties.h"

namespace bench {
namespace {

class FakeDriverInputTest : public testing::Test {
 protected:
  CallRecorder recorder;
  FakeDriverInput input{recorder};
  vr::PropertyContainerHandle_t container = FakeProperties::ContainerOf(1);
  vr::VRInputComponentHandle_t handle = 99;
};

TEST_F(FakeDriverInputTest, UpdatesReachTheComponentOfTheirHandle) {
  vr::VRInputComponentHandle_t other = 0;
  ASSERT_EQ(input.CreateBooleanComponent(container, "/input/grip/click", &handle), vr::VRInputError_None);
  ASSERT_EQ(input.CreateBooleanComponent(container, "/input/system/click", &other), vr::VRInputError_None);
  EXPECT_NE(handle, other);
  EXPECT_EQ(input.UpdateBooleanComponent(handle, true, 0.0), vr::VRInputError_None);
  EXPECT_EQ(input.BoolValue(container, "/input/grip/click"), true);
  EXPECT_EQ(input.BoolValue(container, "/input/system/click"), std::nullopt);
}

TEST_F(FakeDriverInputTest, ScalarsKeepTheirTypeAndUnits) {
  input.CreateScalarComponent(container, "/input/trackpad/x", &handle, vr::VRScalarType_Absolute,
                              vr::VRScalarUnits_NormalizedTwoSided);
  input.UpdateScalarComponent(handle, 0.8F, 0.25);
  const auto component = input.Find(container, "/input/trackpad/x");
  ASSERT_TRUE(component.has_value());
  EXPECT_EQ(component->scalarUnits, vr::VRScalarUnits_NormalizedTwoSided);
  ASSERT_EQ(input.Updates().size(), 1U);
  EXPECT_EQ(input.Updates()[0].timeOffset, 0.25);
  EXPECT_EQ(input.ScalarValue(container, "/input/trackpad/x"), 0.8F);
}

TEST_F(FakeDriverInputTest, AScriptedCreationFailureHandsOutItsHandle) {
  input.FailCreate("/proximity", vr::VRInputError_NoData, 77);
  EXPECT_EQ(input.CreateBooleanComponent(container, "/proximity", &handle), vr::VRInputError_NoData);
  EXPECT_EQ(handle, 77U);
  EXPECT_TRUE(input.Components().empty());
}

TEST_F(FakeDriverInputTest, AScriptedUpdateFailureIsOfItsPathOnly) {
  vr::VRInputComponentHandle_t other = 0;
  input.CreateBooleanComponent(container, "/a", &handle);
  input.CreateBooleanComponent(container, "/b", &other);
  input.FailUpdate("/a", vr::VRInputError_IPCError);
  EXPECT_EQ(input.UpdateBooleanComponent(handle, true, 0.0), vr::VRInputError_IPCError);
  EXPECT_EQ(input.UpdateBooleanComponent(other, true, 0.0), vr::VRInputError_None);
  EXPECT_EQ(input.BoolValue(container, "/a"), std::nullopt);
  EXPECT_EQ(input.Updates("/a").size(), 1U);
}

TEST_F(FakeDriverInputTest, UnknownHandlesAndWrongKindsAreRefused) {
  input.CreateHapticComponent(container, "/output/haptic", &handle);
  EXPECT_EQ(input.UpdateBooleanComponent(handle, true, 0.0), vr::VRInputError_WrongType);
  EXPECT_EQ(input.UpdateScalarComponent(12345, 1.0F, 0.0), vr::VRInputError_InvalidHandle);
}

TEST_F(FakeDriverInputTest, TheSamePathOfTwoDevicesIsTwoComponents) {
  vr::VRInputComponentHandle_t other = 0;
  input.CreateBooleanComponent(container, "/a", &handle);
  input.CreateBooleanComponent(FakeProperties::ContainerOf(2), "/a", &other);
  EXPECT_NE(handle, other);
}

TEST_F(FakeDriverInputTest, NoContainerGetsNoComponent) {
  EXPECT_EQ(input.CreateBooleanComponent(vr::k_ulInvalidPropertyContainer, "/a", &handle),
            vr::VRInputError_InvalidHandle);
  EXPECT_EQ(handle, vr::k_ulInvalidInputComponentHandle);
}

TEST_F(FakeDriverInputTest, AMemoryLimitKeepsTheNewest) {
  input.CreateScalarComponent(container, "/a", &handle, {}, {});
  input.LimitMemory(3);
  for (int update = 0; update < 20; ++update) {
    input.UpdateScalarComponent(handle, static_cast<float>(update), 0.0);
  }
  EXPECT_LE(input.Updates().size(), 7U);
  EXPECT_EQ(input.Updates().back().scalarValue, 19.0F);
}

}  // namespace
}  // namespace bench
