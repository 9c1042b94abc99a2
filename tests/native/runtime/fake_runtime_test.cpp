#include "runtime/fake_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench {
namespace {

using testing::ElementsAre;

TEST(FakeRuntime, HandsOutEachInterfaceAsItsOwnType) {
  FakeRuntime runtime;
  vr::EVRInitError error = vr::VRInitError_Unknown;
  auto* log = static_cast<vr::IVRDriverLog*>(runtime.GetGenericInterface("IVRDriverLog_001", &error));
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(error, vr::VRInitError_None);
  log->Log("one\n");
  EXPECT_THAT(runtime.Log().Lines(), ElementsAre("one\n"));
  for (const char* version : {"IVRServerDriverHost_005", "IVRSettings_002", "IVRProperties_001", "IVRDriverInput_001",
                              "IVRDriverManager_001", "IVRResources_001"}) {
    EXPECT_NE(runtime.GetGenericInterface(version, nullptr), nullptr) << version;
  }
}

TEST(FakeRuntime, VersionsAreComparedExactly) {
  FakeRuntime runtime;
  vr::EVRInitError error = vr::VRInitError_None;
  EXPECT_EQ(runtime.GetGenericInterface("ivrsettings_002", &error), nullptr);
  EXPECT_EQ(error, vr::VRInitError_Init_InterfaceNotFound);
  EXPECT_EQ(runtime.GetGenericInterface("IVRSettings_003", nullptr), nullptr);
}

TEST(FakeRuntime, ThatKeepsNothingStillTellsItsHooks) {
  FakeRuntime runtime;
  runtime.KeepNothing();
  int told = 0;
  runtime.Poses().Listen([&](const PoseRecord& record) { told += record.device == 3 ? 1 : 0; });
  runtime.Input().onUpdate = [&](const InputUpdate& update) { told += update.boolValue ? 1 : 0; };
  runtime.Properties().onWrite = [&](auto, const vr::PropertyWrite_t&) { ++told; };
  vr::VRInputComponentHandle_t handle = 0;
  const auto container = FakeProperties::ContainerOf(3);
  runtime.Input().CreateBooleanComponent(container, "/a", &handle);
  EXPECT_EQ(handle, FakeDriverInput::HandleOf(container, "/a"));
  runtime.Input().UpdateBooleanComponent(handle, true, 0.0);
  runtime.Host().TrackedDevicePoseUpdated(3, {}, sizeof(vr::DriverPose_t));
  vr::CVRPropertyHelpers(&runtime.Properties()).SetInt32Property(container, vr::Prop_DeviceClass_Int32, 2);
  EXPECT_EQ(told, 3);
  EXPECT_TRUE(runtime.Journal().Entries().empty());
  EXPECT_EQ(runtime.Poses().Count(), 0U);
  EXPECT_TRUE(runtime.Input().Updates().empty());
  EXPECT_TRUE(runtime.Properties().Writes().empty());
}

}  // namespace
}  // namespace bench
