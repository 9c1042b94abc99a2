#include "context/device_properties.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "context/driver_context.h"
#include "runtime/fake_runtime.h"
#include "support/runtime_lines.h"

namespace ombrel::test {
namespace {

using Lines = std::vector<std::string>;

class DevicePropertiesTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None); }
  void TearDown() override { Context().Clear(); }

  bench::FakeRuntime runtime_;
};

constexpr std::array<DeviceProperty, 6> kOneOfEach{{{vr::Prop_SerialNumber_String, "0.8"},
                                                    {vr::Prop_IsOnDesktop_Bool, true},
                                                    {vr::Prop_UserIpdMeters_Float, 0.065F},
                                                    {vr::Prop_DeviceClass_Int32, std::int32_t{-7}},
                                                    {vr::Prop_CurrentUniverseId_Uint64, std::uint64_t{1} << 40},
                                                    {vr::Prop_ModelNumber_String, ""}}};

TEST_F(DevicePropertiesTest, WritesOneBatchOfOneForEachInOrder) {
  WriteProperties(bench::FakeProperties::ContainerOf(7), kOneOfEach);
  EXPECT_EQ(PropertyLines(runtime_), (Lines{"7: 1002 5 4 0.8", "7: 2007 4 1 true", "7: 2003 1 4 0.065000",
                                            "7: 1029 2 4 -7", "7: 2004 3 8 1099511627776", "7: 1001 5 1 "}));
}

TEST_F(DevicePropertiesTest, WritesNothingForAnEmptyList) {
  WriteProperties(77, {});
  EXPECT_TRUE(PropertyLines(runtime_).empty());
}

TEST_F(DevicePropertiesTest, AsksTheRuntimeForTheContainer) {
  EXPECT_EQ(ContainerOf(5), bench::FakeProperties::ContainerOf(5));
}

TEST_F(DevicePropertiesTest, DoesWithoutAPropertyInterface) {
  Context().Clear();
  EXPECT_EQ(ContainerOf(5), vr::k_ulInvalidPropertyContainer);
  WriteProperties(77, kOneOfEach);
  EXPECT_TRUE(PropertyLines(runtime_).empty());
}

}  // namespace
}  // namespace ombrel::test
