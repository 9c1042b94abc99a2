#include "context/device_properties.h"

#include <gtest/gtest.h>

#include <array>

#include "context/driver_context.h"
#include "support/fake_runtime.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class DevicePropertiesTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None); }
  void TearDown() override { Context().Clear(); }

  FakeRuntime runtime_;
};

constexpr std::array<DeviceProperty, 6> kOneOfEach{{{vr::Prop_SerialNumber_String, "0.8"},
                                                    {vr::Prop_IsOnDesktop_Bool, true},
                                                    {vr::Prop_UserIpdMeters_Float, 0.065F},
                                                    {vr::Prop_DeviceClass_Int32, std::int32_t{-7}},
                                                    {vr::Prop_CurrentUniverseId_Uint64, std::uint64_t{1} << 40},
                                                    {vr::Prop_ModelNumber_String, ""}}};

TEST_F(DevicePropertiesTest, WritesOneBatchOfOneForEachInOrder) {
  WriteProperties(77, kOneOfEach);
  EXPECT_EQ(runtime_.properties.lines.All(), (Lines{"77: 1002 5 4 0.8", "77: 2007 4 1 true", "77: 2003 1 4 0.065000",
                                                    "77: 1029 2 4 -7", "77: 2004 3 8 1099511627776", "77: 1001 5 1 "}));
}

TEST_F(DevicePropertiesTest, WritesNothingForAnEmptyList) {
  WriteProperties(77, {});
  EXPECT_EQ(runtime_.properties.lines.Size(), 0U);
}

TEST_F(DevicePropertiesTest, AsksTheRuntimeForTheContainer) { EXPECT_EQ(ContainerOf(5), 1005U); }

TEST_F(DevicePropertiesTest, DoesWithoutAPropertyInterface) {
  Context().Clear();
  EXPECT_EQ(ContainerOf(5), vr::k_ulInvalidPropertyContainer);
  WriteProperties(77, kOneOfEach);
  EXPECT_EQ(runtime_.properties.lines.Size(), 0U);
}

}  // namespace
}  // namespace ombrel::test
