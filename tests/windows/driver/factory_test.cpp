#include <gmock/gmock.h>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class FactoryTest : public DriverTest {
 protected:
  void* Ask(const char* name, int* returnCode) { return module.HmdDriverFactory()(name, returnCode); }
};

TEST_F(FactoryTest, AnswersForTheProviderAndLeavesTheReturnCodeAlone) {
  int returnCode = -7;
  EXPECT_NE(Ask("IServerTrackedDeviceProvider_004", &returnCode), nullptr);
  EXPECT_EQ(returnCode, -7);
}

TEST_F(FactoryTest, AnswersForTheProviderWithoutAReturnCode) {
  EXPECT_NE(Ask("IServerTrackedDeviceProvider_004", nullptr), nullptr);
}

TEST_F(FactoryTest, HasOneProvider) {
  EXPECT_EQ(Ask("IServerTrackedDeviceProvider_004", nullptr), Ask("IServerTrackedDeviceProvider_004", nullptr));
}

TEST_F(FactoryTest, HasNoWatchdog) {
  int returnCode = 0;
  EXPECT_EQ(Ask("IVRWatchdogProvider_001", &returnCode), nullptr);
  EXPECT_EQ(returnCode, 105);
}

TEST_F(FactoryTest, RefusesWithoutAReturnCode) { EXPECT_EQ(Ask("IVRWatchdogProvider_001", nullptr), nullptr); }

TEST_F(FactoryTest, RefusesEveryOtherName) {
  const char* const names[] = {"iservertrackeddeviceprovider_004",
                               "IServerTrackedDeviceProvider_003",
                               "IServerTrackedDeviceProvider_0040",
                               "IServerTrackedDeviceProvider_00",
                               " IServerTrackedDeviceProvider_004",
                               "",
                               nullptr};
  for (const char* name : names) {
    int returnCode = 0;
    EXPECT_EQ(Ask(name, &returnCode), nullptr) << (name != nullptr ? name : "null");
    EXPECT_EQ(returnCode, 105);
  }
}

TEST_F(FactoryTest, ProviderNamesTheInterfacesItWasBuiltAgainst) {
  std::vector<std::string> versions;
  for (const char* const* version = Provider().GetInterfaceVersions(); *version != nullptr; ++version) {
    versions.emplace_back(*version);
  }
  EXPECT_THAT(versions,
              testing::ElementsAre("IVRSettings_002", "ITrackedDeviceServerDriver_005", "IVRDisplayComponent_002",
                                   "IVRDriverDirectModeComponent_005", "IVRCameraComponent_002",
                                   "IServerTrackedDeviceProvider_004", "IVRWatchdogProvider_001",
                                   "IVRVirtualDisplay_002", "IVRDriverManager_001", "IVRResources_001"));
}

}  // namespace
}  // namespace ombrel::test
