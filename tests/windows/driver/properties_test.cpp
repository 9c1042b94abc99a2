// The properties that devices write when they are activated: order, type, size and bytes, and one call for each.
#include <gmock/gmock.h>

#include <bit>
#include <cstring>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

template <typename Value>
Bytes BytesOf(Value value) {
  const auto array = std::bit_cast<std::array<std::uint8_t, sizeof(Value)>>(value);
  return {array.begin(), array.end()};
}

Bytes Text(const char* text) { return Bytes(text, text + std::strlen(text) + 1); }

// Numbers of properties and of type tags as the interface has them on the wire.
struct Expected {
  int property;
  std::uint32_t tag;
  Bytes bytes;
};

constexpr std::uint32_t kFloat = 1;
constexpr std::uint32_t kInt32 = 2;
constexpr std::uint32_t kUint64 = 3;
constexpr std::uint32_t kBool = 4;
constexpr std::uint32_t kString = 5;

class PropertiesTest : public DriverTest {
 protected:
  void SetUp() override { ASSERT_EQ(Init(), vr::VRInitError_None); }

  void ExpectWritten(std::uint32_t device, const std::vector<Expected>& expected) {
    const auto writes = runtime.Properties().Writes();
    ASSERT_EQ(writes.size(), expected.size());
    for (std::size_t i = 0; i < writes.size(); ++i) {
      SCOPED_TRACE("property " + std::to_string(i + 1));
      EXPECT_EQ(static_cast<int>(writes[i].property), expected[i].property);
      EXPECT_EQ(writes[i].tag, expected[i].tag);
      EXPECT_EQ(writes[i].bytes, expected[i].bytes);
      EXPECT_EQ(writes[i].container, bench::FakeProperties::ContainerOf(device));
      EXPECT_EQ(writes[i].writeType, vr::PropertyWrite_Set);
      EXPECT_EQ(writes[i].call, i) << "one call for each";
      EXPECT_EQ(writes[i].entriesInCall, 1U);
    }
  }
};

TEST_F(PropertiesTest, OfTheHeadset) {
  Headset().Activate(3);
  ExpectWritten(3, {{2007, kBool, {0}},
                    {1025, kBool, {1}},
                    {2003, kFloat, BytesOf(0.065F)},
                    {2026, kFloat, BytesOf(0.0F)},
                    {2002, kFloat, BytesOf(60.0F)},
                    {2001, kFloat, BytesOf(0.005F)},
                    {1029, kInt32, BytesOf(std::int32_t{1})},
                    {2004, kUint64, BytesOf(std::uint64_t{18})},
                    {1001, kString, Text("Ombrel")},
                    {1002, kString, Text("0.8")}});
}

TEST_F(PropertiesTest, OfTheBaseStation) {
  FakeSensor().Activate(2);
  ExpectWritten(2, {{4000, kFloat, BytesOf(80.0F)},
                    {4001, kFloat, BytesOf(80.0F)},
                    {4002, kFloat, BytesOf(80.0F)},
                    {4003, kFloat, BytesOf(80.0F)},
                    {4004, kFloat, BytesOf(0.0F)},
                    {4005, kFloat, BytesOf(12.0F)},
                    {1029, kInt32, BytesOf(std::int32_t{4})},
                    {2004, kUint64, BytesOf(std::uint64_t{1})},
                    {1001, kString, Text("Ombrel fake sensor")},
                    {1002, kString, Text("0.1113")},
                    {1003, kString, Text("lh_basestation_vive")}});
}

TEST_F(PropertiesTest, RefusedWritesDoNotEndTheActivation) {
  for (const auto property : {vr::Prop_IsOnDesktop_Bool, vr::Prop_SerialNumber_String}) {
    runtime.Properties().FailWrite(property, vr::TrackedProp_PermissionDenied);
  }
  EXPECT_EQ(Headset().Activate(0), vr::VRInitError_None);
  EXPECT_EQ(FakeSensor().Activate(1), vr::VRInitError_None);
  EXPECT_EQ(runtime.Properties().Writes().size(), 21U);
}

TEST_F(PropertiesTest, AreWrittenBetweenTheLogLineAndTheInput) {
  runtime.Journal().Clear();
  Headset().Activate(0);
  const auto calls = runtime.Journal().Calls("IVR");
  ASSERT_EQ(calls.size(), 16U);
  EXPECT_EQ(calls[0], "IVRProperties.TrackedDeviceToPropertyContainer");
  EXPECT_EQ(calls[1], "IVRDriverLog.Log");
  for (std::size_t i = 2; i < 12; ++i) EXPECT_EQ(calls[i], "IVRProperties.WritePropertyBatch");
  EXPECT_EQ(calls[12], "IVRDriverContext.GetGenericInterface");
  EXPECT_EQ(calls[13], "IVRDriverInput.CreateBooleanComponent");
  EXPECT_EQ(calls[14], "IVRDriverInput.UpdateBooleanComponent");
  EXPECT_EQ(calls[15], "IVRServerDriverHost.TrackedDevicePoseUpdated");
}

TEST_F(PropertiesTest, BaseStationWritesThemAfterItsLogLine) {
  runtime.Journal().Clear();
  FakeSensor().Activate(1);
  const auto calls = runtime.Journal().Calls("IVR");
  ASSERT_EQ(calls.size(), 13U);
  EXPECT_EQ(calls[0], "IVRDriverLog.Log");
  EXPECT_EQ(calls[1], "IVRProperties.TrackedDeviceToPropertyContainer");
  for (std::size_t i = 2; i < 13; ++i) EXPECT_EQ(calls[i], "IVRProperties.WritePropertyBatch");
}

}  // namespace
}  // namespace ombrel::test
