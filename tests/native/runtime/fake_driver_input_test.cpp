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

}  // namespace
}  // namespace bench
