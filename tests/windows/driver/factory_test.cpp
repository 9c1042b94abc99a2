// The library's one exported function.
#include <gmock/gmock.h>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class FactoryTest : public DriverTest {
 protected:
  void* Ask(const char* name, int* returnCode) { return module.HmdDriverFactory()(name, returnCode); }
};

TEST_F(FactoryTest, HasOneProviderAndLeavesTheReturnCodeAlone) {
  int returnCode = -7;
  EXPECT_NE(Ask("IServerTrackedDeviceProvider_004", &returnCode), nullptr);
  EXPECT_EQ(returnCode, -7);
  EXPECT_EQ(Ask("IServerTrackedDeviceProvider_004", nullptr), Ask("IServerTrackedDeviceProvider_004", nullptr));
}

TEST_F(FactoryTest, RefusesEveryOtherName) {
  const char* const names[] = {"IVRWatchdogProvider_001",
                               "iservertrackeddeviceprovider_004",
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
    EXPECT_EQ(Ask(name, nullptr), nullptr);
  }
}

}  // namespace
}  // namespace ombrel::test
