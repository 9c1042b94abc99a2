#include <gmock/gmock.h>

#include <chrono>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using Clock = std::chrono::steady_clock;

class CleanupTest : public DriverTest {};

TEST_F(CleanupTest, BeforeInitDoesNoHarm) {
  Provider().Cleanup();
  EXPECT_EQ(Init(), vr::VRInitError_None);
}

TEST_F(CleanupTest, AfterAFailedInitDoesNoHarm) {
  runtime.Withhold("IVRResources_001");
  ASSERT_NE(Init(), vr::VRInitError_None);
  Provider().Cleanup();
  runtime.Provide("IVRResources_001");
  EXPECT_EQ(Init(), vr::VRInitError_None);
}

TEST_F(CleanupTest, TwiceDoesNoHarm) {
  InitAndActivateHeadset();
  Provider().Cleanup();
  const auto begin = Clock::now();
  Provider().Cleanup();
  EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(100)) << "there was nothing left to wait for";
}

TEST_F(CleanupTest, WaitsFourTenthsOfASecondAndNotMuchMore) {
  InitAndActivateHeadset();
  const auto begin = Clock::now();
  Provider().Cleanup();
  const auto taken = Clock::now() - begin;
  EXPECT_GE(taken, std::chrono::milliseconds(390));
  EXPECT_LE(taken, std::chrono::milliseconds(1500));
}

TEST_F(CleanupTest, InitAfterwardsBuildsANewHeadset) {
  InitAndActivateHeadset();
  Provider().Cleanup();
  NewLogLines();
  ASSERT_EQ(Init(), vr::VRInitError_None);
  ASSERT_EQ(runtime.Host().Added().size(), 2U);
  EXPECT_EQ(runtime.Host().Added().at(1).serial, "serialNumber");
  EXPECT_EQ(NewLogLines().at(0), "Ombrel process is running\n");
}

TEST_F(CleanupTest, InitAfterwardsWorksWithAnotherRuntime) {
  bench::FakeRuntime other;
  other.Settings().Set("driver_ombrel", "hmdMode", 7);
  InitAndActivateHeadset();
  Provider().Cleanup();
  ASSERT_EQ(Provider().Init(&other), vr::VRInitError_None);
  EXPECT_EQ(other.Host().Added().size(), 2U);
  EXPECT_EQ(other.Log().Lines().at(1), "Preparing HMD, mode 7\n");
  Unload();
}

TEST_F(CleanupTest, RunFrameAfterwardsReportsNoHeadset) {
  InitAndActivateHeadset();
  Provider().Cleanup();
  const std::size_t updates = runtime.Input().Updates().size();
  Provider().RunFrame();
  EXPECT_EQ(runtime.Input().Updates().size(), updates);
}

TEST_F(CleanupTest, RunFrameBeforeInitDoesNoHarm) {
  Provider().RunFrame();
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

}  // namespace
}  // namespace ombrel::test
