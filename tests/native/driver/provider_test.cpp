// The provider between a runtime and a companion, neither of which is always well.
#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "provider_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class AnnouncementTest : public ProviderTest {
 protected:
  // The runtime notes the device and then fails.
  void ThrowWhenAnnounced(vr::ETrackedDeviceClass thrower) {
    runtime_.Host().onAdded = [thrower](const bench::AddedDevice& device) {
      if (device.deviceClass == thrower) throw std::runtime_error("no room for a device");
    };
  }
  // Of a device that is no more, the address sanitizer tells.
  void ExpectBothToWork() {
    ASSERT_EQ(Added().size(), 2U);
    for (const std::uint32_t index : {0U, kBaseStation}) {
      EXPECT_EQ(Device(index).Activate(index), vr::VRInitError_None);
      EXPECT_TRUE(PoseOf(Device(index)).poseIsValid);
    }
  }
};

TEST_F(AnnouncementTest, ABaseStationWhoseAnnouncementThrowsEndsNoInit) {
  ThrowWhenAnnounced(vr::TrackedDeviceClass_TrackingReference);
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().Lines().back(), "Fake sensor registered with result 0\n");
  ExpectBothToWork();
}

TEST_F(AnnouncementTest, AHeadsetWhoseAnnouncementThrowsStays) {
  ThrowWhenAnnounced(vr::TrackedDeviceClass_HMD);
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().Lines().back(), "Fake sensor registered with result 1\n");
  ExpectBothToWork();
}

class FrameTest : public ProviderTest {
 protected:
  void SetUp() override {
    Start();
    runtime_.Journal().Clear();
  }
  void Push(std::uint32_t type) {
    vr::VREvent_t event{};
    event.eventType = type;
    runtime_.Host().PushEvent(event);
  }
};

TEST_F(FrameTest, TakesAllEventsThenReportsTheHeadsetAndThenTheBaseStation) {
  for (const std::uint32_t type : {100U, 1701U, 1699U, 0U}) Push(type);
  provider_.RunFrame();
  EXPECT_EQ(runtime_.Host().QueuedEvents(), 0U);
  const std::string poll = "IVRServerDriverHost.PollNextEvent";
  EXPECT_THAT(runtime_.Journal().Calls("IVR"),
              ElementsAre(poll, poll, poll, poll, "IVRDriverInput.UpdateBooleanComponent",
                          "IVRServerDriverHost.TrackedDevicePoseUpdated"));
}

TEST_F(FrameTest, SendsNoHeadsetPoseAndTheBaseStationsEachTime) {
  for (int frame = 0; frame < 3; ++frame) provider_.RunFrame();
  EXPECT_EQ(PosesOf(0), 1U) << "that of the activation";
  EXPECT_EQ(PosesOf(kBaseStation), 3U);
}

TEST_F(FrameTest, DropsVibrationsOfUnknownContainersWithoutAWord) {
  runtime_.Log().TakeNew();
  for (const vr::PropertyContainerHandle_t container :
       {bench::FakeProperties::ContainerOf(0), std::uint64_t{0}, ~std::uint64_t{0}}) {
    runtime_.Host().PushHaptic(container, 1, 0.1F, 100.0F, 1.0F);
  }
  provider_.RunFrame();
  EXPECT_EQ(runtime_.Host().QueuedEvents(), 0U);
  EXPECT_TRUE(runtime_.Log().TakeNew().empty());
}

TEST_F(ProviderTest, RunsFramesBeforeInitAndBeforeItsDevicesAreActivated) {
  provider_.RunFrame();
  EXPECT_TRUE(runtime_.Journal().Entries().empty());
  ASSERT_EQ(Init(), vr::VRInitError_None);
  provider_.RunFrame();
  EXPECT_TRUE(runtime_.Input().Updates().empty());
  EXPECT_EQ(runtime_.Poses().Count(), 0U);
}

TEST_F(ProviderTest, NamesTheInterfacesItWasBuiltAgainst) {
  Lines versions;
  for (const char* const* version = provider_.GetInterfaceVersions(); *version != nullptr; ++version) {
    versions.emplace_back(*version);
  }
  EXPECT_THAT(versions, ElementsAre("IVRSettings_002", "ITrackedDeviceServerDriver_005", "IVRDisplayComponent_002",
                                    "IVRDriverDirectModeComponent_005", "IVRCameraComponent_002",
                                    "IServerTrackedDeviceProvider_004", "IVRWatchdogProvider_001",
                                    "IVRVirtualDisplay_002", "IVRDriverManager_001", "IVRResources_001"));
}

TEST_F(ProviderTest, TellsOfStandbyInASessionOnly) {
  const auto lines = [this] {
    EXPECT_TRUE(provider_.ShouldBlockStandbyMode());
    provider_.EnterStandby();
    provider_.LeaveStandby();
    return runtime_.Log().TakeNew();
  };
  EXPECT_TRUE(lines().empty());
  ASSERT_EQ(Init(), vr::VRInitError_None);
  runtime_.Log().TakeNew();
  EXPECT_THAT(lines(), ElementsAre("ShouldBlockStandby Server Tracked device \n",
                                   "Enter standby Server tracked device \n", "Leave standby Server tracked device \n"));
  provider_.Cleanup();
  EXPECT_TRUE(lines().empty());
}

TEST_F(ProviderTest, KeepsTheLogOfAnInitThatFailedUntilCleanup) {
  bench::FakeRuntime other;
  TheProcesses().listed.clear();
  ASSERT_NE(Init(), vr::VRInitError_None);
  TheProcesses() = {};
  ASSERT_EQ(provider_.Init(&other), vr::VRInitError_None);
  EXPECT_TRUE(other.Log().Lines().empty());
  EXPECT_TRUE(runtime_.Log().Contains("Ombrel process is running\n"));
  provider_.Cleanup();
}

TEST_F(ProviderTest, CleanupWaitsFourTenthsOfASecondOnceAndNotMuchMore) {
  using Clock = std::chrono::steady_clock;
  provider_.Cleanup();
  Start();
  const auto begin = Clock::now();
  provider_.Cleanup();
  const auto cleaned = Clock::now();
  provider_.Cleanup();
  EXPECT_GE(cleaned - begin, std::chrono::milliseconds(390));
  EXPECT_LE(cleaned - begin, std::chrono::milliseconds(3000));
  EXPECT_LT(Clock::now() - cleaned, std::chrono::milliseconds(300)) << "there was nothing left to wait for";
}

TEST_F(ProviderTest, TheBaseStationsPoseGoesOnAfterCleanupAndTheHeadsetsReportDoesNot) {
  Start();
  provider_.Cleanup();
  const std::size_t poses = PosesOf(kBaseStation), inputs = runtime_.Input().Updates().size();
  for (int frame = 0; frame < 2; ++frame) provider_.RunFrame();
  EXPECT_EQ(PosesOf(kBaseStation), poses + 2);
  EXPECT_EQ(runtime_.Input().Updates().size(), inputs);
}

TEST_F(ProviderTest, WorksWithAnotherRuntimeAfterCleanup) {
  bench::FakeRuntime other;
  other.Settings().Set("driver_ombrel", "hmdMode", 7);
  Start();
  provider_.Cleanup();
  ASSERT_EQ(provider_.Init(&other), vr::VRInitError_None);
  EXPECT_EQ(other.Host().Added().size(), 2U);
  EXPECT_EQ(other.Log().Lines().at(1), "Preparing HMD, mode 7\n");
  provider_.Cleanup();
}

TEST_F(ProviderTest, EndsTheMonitorForACompanionThatAsksForTheEndOfTheSession) {
  Connect();
  ASSERT_TRUE(companion_.Send(14, Bytes().Fill(321, 7)));
  Fence();
  EXPECT_THAT(TheProcesses().ended, ElementsAre(12U));
  EXPECT_FALSE(TheProcesses().isOwnEnded);
}

TEST_F(ProviderTest, EndsNothingWithoutAMonitor) {
  TheProcesses().listed.pop_back();
  Connect();
  ASSERT_TRUE(companion_.Send(14));
  Fence();
  EXPECT_TRUE(TheProcesses().ended.empty());
  EXPECT_FALSE(TheProcesses().isOwnEnded);
}

TEST_F(ProviderTest, EndsItsOwnProcessWhenThatIsTheRuntimesServer) {
  TheProcesses().ownPath = "vrserver.exe";
  Connect();
  ASSERT_TRUE(companion_.Send(14));
  Fence();
  EXPECT_TRUE(TheProcesses().isOwnEnded);
  EXPECT_TRUE(TheProcesses().ended.empty());
}

TEST_F(ProviderTest, EndsNothingWithoutItsOwnPath) {
  TheProcesses().ownPath.clear();
  Connect();
  ASSERT_TRUE(companion_.Send(14));
  Fence();
  EXPECT_FALSE(TheProcesses().isOwnEnded);
  EXPECT_TRUE(TheProcesses().ended.empty());
}

}  // namespace
}  // namespace ombrel::test
