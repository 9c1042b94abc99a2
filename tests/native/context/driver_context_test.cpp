#include "context/driver_context.h"

#include <gtest/gtest.h>

#include "support/fake_runtime.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class DriverContextTest : public testing::Test {
 protected:
  DriverContext context_;
  FakeRuntime runtime_;
};

TEST_F(DriverContextTest, HasNothingBeforeInit) {
  EXPECT_EQ(context_.Settings(), nullptr);
  EXPECT_EQ(context_.ServerDriverHost(), nullptr);
  EXPECT_EQ(context_.DriverInput(), nullptr);
}

TEST_F(DriverContextTest, FetchesAllButTheInputInterface) {
  EXPECT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(runtime_.asked.All(), (Lines{"IVRServerDriverHost_005", "IVRSettings_002", "IVRProperties_001",
                                         "IVRDriverLog_001", "IVRDriverManager_001", "IVRResources_001"}));
}

TEST_F(DriverContextTest, FetchesTheInputInterfaceOnFirstUseAndOnce) {
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_NE(context_.DriverInput(), nullptr);
  EXPECT_NE(context_.DriverInput(), nullptr);
  EXPECT_EQ(runtime_.asked.Count("IVRDriverInput_001"), 1U);
}

TEST_F(DriverContextTest, GivesTheRuntimesInterfaces) {
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(context_.Settings(), &runtime_.settings);
  EXPECT_EQ(context_.Properties(), &runtime_.properties);
  EXPECT_EQ(context_.ServerDriverHost(), &runtime_.host);
  EXPECT_EQ(context_.DriverLog(), &runtime_.log);
}

TEST_F(DriverContextTest, FailsAtTheFirstInterfaceThatIsMissing) {
  const Lines order{"IVRServerDriverHost_005", "IVRSettings_002",      "IVRProperties_001",
                    "IVRDriverLog_001",        "IVRDriverManager_001", "IVRResources_001"};
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i] == "IVRProperties_001") continue;
    FakeRuntime runtime;
    runtime.withheld = {order[i]};
    EXPECT_EQ(context_.Init(&runtime), vr::VRInitError_Init_InterfaceNotFound) << order[i];
    EXPECT_EQ(runtime.asked.All().back(), order[i]);
  }
}

TEST_F(DriverContextTest, DoesWithoutProperties) {
  runtime_.withheld = {"IVRProperties_001"};
  EXPECT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(context_.Properties(), nullptr);
}

TEST_F(DriverContextTest, TriesAgainForWhatWasMissing) {
  runtime_.withheld = {"IVRProperties_001"};
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_None);
  runtime_.withheld.clear();
  EXPECT_EQ(context_.Properties(), &runtime_.properties);
}

TEST_F(DriverContextTest, AGoodInitMayFollowABadOne) {
  runtime_.withheld = {"IVRDriverLog_001"};
  ASSERT_EQ(context_.Init(&runtime_), vr::VRInitError_Init_InterfaceNotFound);
  FakeRuntime other;
  EXPECT_EQ(context_.Init(&other), vr::VRInitError_None);
  EXPECT_EQ(context_.ServerDriverHost(), &other.host);
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
