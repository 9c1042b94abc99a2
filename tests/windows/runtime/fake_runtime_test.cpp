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

TEST(FakeRuntime, WithholdsWhatItIsToldTo) {
  FakeRuntime runtime;
  runtime.Withhold("IVRResources_001");
  EXPECT_EQ(runtime.GetGenericInterface("IVRResources_001", nullptr), nullptr);
  runtime.Provide("IVRResources_001");
  EXPECT_NE(runtime.GetGenericInterface("IVRResources_001", nullptr), nullptr);
  EXPECT_THAT(runtime.RequestedInterfaces(), ElementsAre("IVRResources_001", "IVRResources_001"));
}

TEST(FakeRuntime, OneJournalHoldsTheCallsOfAllInterfaces) {
  FakeRuntime runtime;
  static_cast<void>(runtime.Settings().GetBool("section", "key", nullptr));
  runtime.Log().Log("text");
  runtime.Host().VsyncEvent(0.0);
  EXPECT_THAT(runtime.Journal().Calls(),
              ElementsAre("IVRSettings.GetBool", "IVRDriverLog.Log", "IVRServerDriverHost.VsyncEvent"));
}

TEST(FakeRuntime, KnowsItsDriverByName) {
  FakeRuntime runtime("toy");
  char name[8] = {};
  EXPECT_EQ(runtime.Manager().GetDriverName(0, name, sizeof name), 4U);
  EXPECT_STREQ(name, "toy");
  EXPECT_EQ(runtime.Manager().GetDriverHandle("toy"), runtime.GetDriverHandle());
  EXPECT_EQ(runtime.Manager().GetDriverHandle("other"), vr::k_ulInvalidDriverHandle);
}

}  // namespace
}  // namespace bench
