// A headset with a companion at the other end of its link.
#include <array>
#include <atomic>
#include <cmath>
#include <tuple>

#include "hmd_fixture.h"
#include "support/near.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class HeadsetLinkTest : public HeadsetTest {
 protected:
  // Made, activated as device 3, and connected.
  template <typename Headset = HMDDriverDirect>
  [[nodiscard]] bool MakeConnected() {
    Make<Headset>();
    StartLink();
    headset_->Activate(3);
    return companion_.Connect();
  }
};

TEST_F(HeadsetLinkTest, PassesAPoseOnToTheRuntime) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(WaitForPoses(2));
  const vr::DriverPose_t pose = LastPose();
  EXPECT_EQ(pose.qRotation.w, static_cast<double>(0.8F));
  EXPECT_EQ(pose.qRotation.y, static_cast<double>(0.6F));
  EXPECT_EQ(pose.vecPosition[0], 0.25);
  EXPECT_EQ(pose.vecPosition[1], 1.5);
  EXPECT_EQ(pose.vecPosition[2], -0.75);
  EXPECT_EQ(PoseLines(runtime_)[1], "3 280");
  EXPECT_EQ(Pose().qRotation.y, pose.qRotation.y);
}

TEST_F(HeadsetLinkTest, IsWholeBeforeItsLinkStarts) {
  companion_.Offer();
  Make();
  // Longer than the link would wait between two tries.
  EXPECT_FALSE(companion_.in.IsOpened(300));
  StartLink();
  EXPECT_TRUE(companion_.Accept());
}

TEST_F(HeadsetLinkTest, AppliesTheUsersOffsets) {
  Set("RotationOffsetYDeg", 90);
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  ASSERT_TRUE(WaitForPoses(2));
  EXPECT_NEAR(LastPose().qRotation.w, std::sqrt(0.5), 1e-6);
  EXPECT_NEAR(LastPose().qRotation.y, std::sqrt(0.5), 1e-6);
}

TEST_F(HeadsetLinkTest, PassesTheTrackingStateOn) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.Send(4, Bytes().U8(2).U32(254)));
  ASSERT_TRUE(WaitForPoses(2));
  EXPECT_EQ(LastPose().result, vr::TrackingResult_Uninitialized);
  EXPECT_FALSE(LastPose().deviceIsConnected);
  ASSERT_TRUE(companion_.Send(4, Bytes().U8(5).U32(254)));
  ASSERT_TRUE(WaitForPoses(3));
  EXPECT_EQ(LastPose().result, vr::TrackingResult_Running_OK);
}

TEST_F(HeadsetLinkTest, SendsTheFormerPoseOnceMoreForAPosition) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(companion_.Send(4, Bytes().F32({1, 2, 3}).U32(5)));
  ASSERT_TRUE(WaitForPoses(3));
  EXPECT_EQ(LastPose().qRotation.y, static_cast<double>(0.6F));
  EXPECT_EQ(LastPose().vecPosition[1], 1.5);
}

// Nothing has been published yet, and what is published by then stands at the origin.
TEST_F(HeadsetLinkTest, MovesTheHeadToTheOriginForAPositionThatComesFirst) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.Send(4, Bytes().F32({1, 2, 3}).U32(5)));
  ASSERT_TRUE(WaitForPoses(2));
  EXPECT_EQ(LastPose().qRotation.w, 1.0);
  for (const double coordinate : LastPose().vecPosition) EXPECT_EQ(coordinate, 0.0);
  EXPECT_TRUE(LastPose().poseIsValid);
}

TEST_F(HeadsetLinkTest, PassesNumbersThatAreNotFiniteOn) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.Send(4, Bytes().F32({kNan, 0, 0, 1, 1, INFINITY, kNan}).U32(4)));
  ASSERT_TRUE(WaitForPoses(2));
  const vr::DriverPose_t pose = LastPose();
  for (const double part : {pose.qRotation.w, pose.qRotation.x, pose.qRotation.y, pose.qRotation.z}) {
    EXPECT_TRUE(std::isnan(part));
  }
  EXPECT_EQ(pose.vecPosition[0], 1.0);
  EXPECT_EQ(pose.vecPosition[1], static_cast<double>(INFINITY));
  EXPECT_TRUE(std::isnan(pose.vecPosition[2]));
  EXPECT_TRUE(pose.poseIsValid);
}

TEST_F(HeadsetLinkTest, KeepsARecenteringAsLongAsItLives) {
  const auto facesLeft = [this](std::size_t poses) {
    EXPECT_TRUE(companion_.SendPose(0, kRoot, 0, kRoot) && WaitForPoses(poses));
    return LastPose().qRotation.y > 0.7;
  };
  ASSERT_TRUE(MakeConnected());
  EXPECT_TRUE(facesLeft(2));
  ASSERT_TRUE(companion_.Send(8));
  EXPECT_FALSE(facesLeft(3));
  headset_->Core().StopLink();
  companion_.Disconnect();
  ASSERT_TRUE(MakeConnected());
  // Four by now: a headset sends its pose when it is activated.
  EXPECT_TRUE(facesLeft(5));
}

TEST_F(HeadsetLinkTest, TakesPosesInOnlyOnceItIsActive) {
  Make();
  StartLink();
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(72)));
  // The frame rate comes behind the pose.
  ASSERT_TRUE(WaitForLogLine("Updating headset fps, new value: 72.000000 \n"));
  EXPECT_EQ(Pose().qRotation.y, 0.0);
  EXPECT_EQ(runtime_.Poses().Count(), 0U);
  headset_->Activate(3);
  EXPECT_EQ(LastPose().qRotation.y, static_cast<double>(0.6F));
}

TEST_F(HeadsetLinkTest, PassesAFrameRateOn) {
  ASSERT_TRUE(MakeConnected());
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(72)));
  EXPECT_TRUE(WaitForLogLine("Updating headset fps, new value: 72.000000 \n"));
  EXPECT_EQ(PropertyLines(runtime_).back(), "3: 2002 1 4 72.000000");
}

TEST_F(HeadsetLinkTest, TellsTheCoreOfAFrameRateBeforeTheRuntime) {
  ASSERT_TRUE(MakeConnected());
  std::uint32_t cores = 0;
  runtime_.Properties().onWrite = [&](auto, const vr::PropertyWrite_t& write) {
    if (write.prop == vr::Prop_DisplayFrequency_Float) cores = headset_->Core().Pacer().FramesPerSecond();
  };
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(72)));
  ASSERT_TRUE(WaitForLogLine("Updating headset fps, new value: 72.000000 \n"));
  EXPECT_EQ(cores, 72U);
}

// What the runtime throws at the link's own thread is lost there, and only there.
TEST_F(HeadsetLinkTest, OutlivesARuntimeThatThrows) {
  ASSERT_TRUE(MakeConnected());
  const Bytes pose = Bytes().F32({0, 0, 0, 1, 0, 0, 0}).U32(4), rate = Bytes().U32(72);
  const std::tuple<const char*, std::uint32_t, Bytes> faults[] = {
      {"IVRServerDriverHost.TrackedDevicePoseUpdated", 4, pose},
      {"IVRProperties.WritePropertyBatch", 9, rate},
      {"IVRDriverLog.Log", 9, rate}};
  for (const auto& [call, type, payload] : faults) {
    const std::size_t calls = runtime_.Journal().Count(call), poses = runtime_.Poses().Count();
    runtime_.Recorder().ThrowFrom(call);
    ASSERT_TRUE(companion_.Send(type, payload));
    EXPECT_TRUE(WaitFor([&, name = call] { return runtime_.Journal().Count(name) > calls; })) << call;
    ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
    EXPECT_TRUE(WaitForPoses(poses + (type == 4 ? 2 : 1))) << call;
  }
}

TEST_F(HeadsetLinkTest, LogsARateThatTheRuntimeRefuses) {
  ASSERT_TRUE(MakeConnected());
  runtime_.Properties().FailWrite(vr::Prop_DisplayFrequency_Float, vr::TrackedProp_PermissionDenied);
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(75)));
  EXPECT_TRUE(WaitForLogLine("Updating headset fps, new value: 75.000000 \n"));
}

TEST_F(HeadsetLinkTest, LogsNothingOfTheLinkItself) {
  Make();
  StartLink();
  const std::size_t before = LogLines().size();
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(companion_.out.Send(Bytes().U32(0xFFFFFFFF).U32(4)));
  EXPECT_TRUE(companion_.in.WaitForClientGone());
  EXPECT_EQ(LogLines().size(), before);
}

// A waiting frame may only go on when the runtime has the pose that it is to show.
TEST_F(HeadsetLinkTest, TellsTheRuntimeOfAPoseBeforeItLetsAFrameGo) {
  ASSERT_TRUE(MakeConnected<HMDDriverVirtual>());
  ASSERT_TRUE(renderer_->journal.WaitForLine("AcquireOutput 0 16"));
  Background frame([this] {
    while (renderer_->journal.Count("Sharing") == 0) headset_->Core().Frames().HandOffTexture(5);
  });
  ASSERT_TRUE(renderer_->journal.WaitForLine("AcquireOutput 1 16"));
  Barrier runtime;
  runtime_.Poses().Listen([&](const bench::PoseRecord&) { runtime.Pass(); });
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  ASSERT_TRUE(runtime.WaitForVisitor());
  EXPECT_TRUE(frame.StaysBlocked());
  runtime.Open();
  EXPECT_TRUE(frame.Finishes());
}

TEST_F(HeadsetLinkTest, ACompanionThatIsThereLongBeforeActivationGetsFramesAfterwards) {
  Make();
  StartLink();
  ASSERT_TRUE(companion_.Connect());
  EXPECT_FALSE(companion_.in.HasData(1500));
  headset_->Activate(3);
  ASSERT_TRUE(renderer_->journal.WaitForLine("AcquireOutput 0 16"));
  std::vector<LayerRecord> layers;
  Background frames([&] {
    while (renderer_->journal.Count("Sharing") == 0) headset_->Core().Frames().HandOffLayers(0, layers, {});
  });
  EXPECT_TRUE(frames.Finishes());
  EXPECT_TRUE(companion_.Receive().has_value());
}

// Whoever asks for the pose gets a whole one: here all parts of its rotation are equal in size.
TEST_F(HeadsetLinkTest, NobodySeesHalfAPose) {
  ASSERT_TRUE(MakeConnected());
  std::atomic<bool> done{false};
  std::atomic<int> halves{0};
  Background reader([&] {
    while (!done) {
      const vr::HmdQuaternion_t q = Pose().qRotation;
      const bool first = q.w == 1.0;
      const bool whole = first || (q.w == q.x && q.x == q.y && q.y == q.z);
      halves += whole ? 0 : 1;
    }
  });
  for (int i = 0; i < 500; ++i) {
    const float part = i % 2 == 0 ? 0.5F : -0.5F;
    ASSERT_TRUE(companion_.SendPose(part, part, part, part));
  }
  EXPECT_TRUE(WaitForPoses(501));
  done = true;
  EXPECT_TRUE(reader.Finishes());
  EXPECT_EQ(halves, 0);
}

}  // namespace
}  // namespace ombrel::test
