#include "context/driver_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "runtime/fake_runtime.h"

namespace ombrel::test {
namespace {

using Lines = std::vector<std::string>;

class DriverContextTest : public testing::Test {
 protected:
  DriverContext context_;
  bench::FakeRuntime runtime_;
};

TEST_F(DriverContextTest, HasNothingBeforeInit) {
  EXPECT_EQ(context_.Settings(), nullptr);
  EXPECT_EQ(context_.ServerDriverHost(), nullptr);
  EXPECT_EQ(context_.DriverInput(), nullptr);
}

TEST_F(DriverContextTest, FetchesAllButTheInputInterface) {
  EXPECT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(runtime_.RequestedInterfaces(), (Lines{"IVRServerDriverHost_005", "IVRSettings_002", "IVRProperties_001",
                                                   "IVRDriverLog_001", "IVRDriverManager_001", "IVRResources_001"}));
}

TEST_F(DriverContextTest, FetchesTheInputInterfaceOnFirstUseAndOnce) {
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_NE(context_.DriverInput(), nullptr);
  EXPECT_NE(context_.DriverInput(), nullptr);
  EXPECT_EQ(std::ranges::count(runtime_.RequestedInterfaces(), "IVRDriverInput_001"), 1);
}

TEST_F(DriverContextTest, GivesTheRuntimesInterfaces) {
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(context_.Settings(), &runtime_.Settings());
  EXPECT_EQ(context_.Properties(), &runtime_.Properties());
  EXPECT_EQ(context_.ServerDriverHost(), &runtime_.Host());
  EXPECT_EQ(context_.DriverLog(), &runtime_.Log());
}

TEST_F(DriverContextTest, FailsAtTheFirstInterfaceThatIsMissing) {
  const Lines order{"IVRServerDriverHost_005", "IVRSettings_002",      "IVRProperties_001",
                    "IVRDriverLog_001",        "IVRDriverManager_001", "IVRResources_001"};
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i] == "IVRProperties_001") continue;
    bench::FakeRuntime runtime;
    runtime.Withhold(order[i]);
    EXPECT_EQ(context_.Init(&runtime), vr::VRInitError_Init_InterfaceNotFound) << order[i];
    EXPECT_EQ(runtime.RequestedInterfaces().back(), order[i]);
  }
}

TEST_F(DriverContextTest, DoesWithoutProperties) {
  runtime_.Withhold("IVRProperties_001");
  EXPECT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(context_.Properties(), nullptr);
}

TEST_F(DriverContextTest, TriesAgainForWhatWasMissing) {
  runtime_.Withhold("IVRProperties_001");
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  runtime_.Provide("IVRProperties_001");
  EXPECT_EQ(context_.Properties(), &runtime_.Properties());
}

TEST_F(DriverContextTest, AGoodInitMayFollowABadOne) {
  runtime_.Withhold("IVRDriverLog_001");
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_Init_InterfaceNotFound);
  bench::FakeRuntime other;
  EXPECT_EQ(context_.Init(&other), vr::VRInitError_None);
  EXPECT_EQ(context_.ServerDriverHost(), &other.Host());
}

TEST_F(DriverContextTest, ForgetsEverythingWhenCleared) {
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  ASSERT_NE(context_.DriverInput(), nullptr);
  context_.Clear();
  EXPECT_EQ(context_.ServerDriverHost(), nullptr);
  EXPECT_EQ(context_.Settings(), nullptr);
  EXPECT_EQ(context_.Properties(), nullptr);
  EXPECT_EQ(context_.DriverInput(), nullptr);
}

}  // namespace
}  // namespace ombrel::test
