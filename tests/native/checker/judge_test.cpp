#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ombrel/protocol.h>

#include <limits>

#include "made_up_session.h"

namespace checker::test {
namespace {

class JudgeTest : public testing::Test {
 protected:
  MadeUpSession session;
  MadeUpSession empty{MadeUpSession::Empty{}};
};

TEST_F(JudgeTest, FindsNothingAgainstAGoodSession) { EXPECT_EQ(session.Broken(), ""); }

TEST_F(JudgeTest, WantsAProcessOfTheName) {
  session.Remove(EventKind::kProcessFound);
  EXPECT_EQ(session.Broken(), "P1");
}

TEST_F(JudgeTest, WantsTheSecondPipeWithTheFirst) {
  empty.AddPipe(EventKind::kPipeOpened, Pipe::kIn, 100);
  empty.AddPipe(EventKind::kPipeOpened, Pipe::kOut, 250, 2);
  empty.AddPipe(EventKind::kPipeOpened, Pipe::kOut, 350);
  EXPECT_EQ(empty.Broken(), "P2");
  EXPECT_THAT(empty.Violations().at(0).evidence[0], testing::HasSubstr("came 250.0 ms after In"));
}

TEST_F(JudgeTest, SaysThatTheSecondPipeNeverCame) {
  empty.AddPipe(EventKind::kPipeOpened, Pipe::kIn, 100);
  empty.AddPipe(EventKind::kPipeOpened, Pipe::kOut, 250, 2);
  EXPECT_THAT(empty.Violations().at(0).evidence[0], testing::HasSubstr("error 2, and never came"));
}

TEST_F(JudgeTest, WantsMessagesAsLongAsTheirTypeNeeds) {
  Bytes shortPose(16);
  shortPose[12] = OMBREL_POSE_QUATERNION;
  session.Send(1000, MessageOf(OMBREL_TRACKING_UPDATE, shortPose));
  session.Send(1001, MessageOf(OMBREL_TRACKING_UPDATE, Bytes(3)));
  session.Send(1002, MessageOf(OMBREL_FRAMERATE_UPDATE, Bytes(3)));
  session.Send(1003, MessageOf(OMBREL_CONTROLLER_UPDATE, Bytes(191)));
  EXPECT_EQ(session.Broken(), "P3");
  EXPECT_EQ(session.Violations().at(0).count, 4U);
}

TEST_F(JudgeTest, AllowsPayloadsThatAreLongerThanNeeded) {
  Bytes longPose = BytesOf(OmbrelTrackingQuaternion{{0, 0, 0, 1}, {}, 0});
  longPose.resize(100);
  longPose[96] = OMBREL_POSE_QUATERNION;
  session.Send(1000, MessageOf(OMBREL_TRACKING_UPDATE, longPose));
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeTest, WantsNoPayloadOverTheLimit) {
  session.CutOffAt(2900);
  session.Send(2900, BytesOf(OmbrelMessageHeader{OMBREL_MAX_PAYLOAD + 1, OMBREL_TRACKING_UPDATE}));
  EXPECT_EQ(session.Broken(), "P4");
}

TEST_F(JudgeTest, TakesTheLargestPayload) {
  session.Send(1000, MessageOf(OMBREL_RECENTER_REQUEST, Bytes(OMBREL_MAX_PAYLOAD)));
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeTest, WantsMessagesThatDoNotStall) {
  const Bytes pose = Pose();
  empty.Connect(0);
  empty.Send(200, Bytes(pose.begin(), pose.begin() + 20));
  empty.Send(301, Bytes(pose.begin() + 20, pose.end()));
  EXPECT_EQ(empty.Broken(), "P5");
}

TEST_F(JudgeTest, AllowsMessagesInPieces) {
  const Bytes pose = Pose();
  empty.Connect(0);
  for (std::size_t i = 0; i < pose.size(); ++i) empty.Send(200 + static_cast<double>(i), {pose[i]});
  EXPECT_EQ(empty.Broken(), "");
}

TEST_F(JudgeTest, WantsTheRestOfAMessageBeforeTheEnd) {
  session.CutOffAt(2900);
  session.Send(2900, {32, 0, 0});
  session.Disconnect(2950);
  EXPECT_EQ(session.Broken(), "P5");
}

TEST_F(JudgeTest, WantsTypesAndFormatsThatAreKnown) {
  Bytes matrix = BytesOf(OmbrelTrackingMatrix{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, 7});
  session.Send(1000, MessageOf(99, {}));
  session.Send(1001, MessageOf(OMBREL_HAPTIC_PULSE, Bytes(12)));
  session.Send(1002, MessageOf(OMBREL_TRACKING_UPDATE, matrix));
  EXPECT_EQ(session.Broken(), "P6");
  EXPECT_EQ(session.Violations().at(0).count, 3U);
}

TEST_F(JudgeTest, WantsFiniteNumbers) {
  OmbrelControllerUpdate record{};
  record.pose[0] = record.pose[5] = record.pose[10] = 1;
  record.velocity[2] = -std::numeric_limits<double>::infinity();
  session.Send(1000, MessageOf(OMBREL_CONTROLLER_UPDATE, BytesOf(record)));
  session.Send(1001, Pose(1, std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(session.Broken(), "P7");
  EXPECT_EQ(session.Violations().at(0).count, 2U);
}

TEST_F(JudgeTest, WantsRotationsOfUnitLength) {
  OmbrelTrackingMatrix matrix{{1, 0, 0, 5, 0, 1, 0, 5, 0, 0, 1, 5}, OMBREL_POSE_MATRIX};
  session.Send(1000, MessageOf(OMBREL_TRACKING_UPDATE, BytesOf(matrix)));
  session.Send(1001, Pose(1.009F));
  EXPECT_EQ(session.Broken(), "");
  matrix.matrix[5] = 2;
  session.Send(1002, MessageOf(OMBREL_TRACKING_UPDATE, BytesOf(matrix)));
  session.Send(1003, Pose(1.02F));
  EXPECT_EQ(session.Broken(), "P8");
  EXPECT_EQ(session.Violations().at(0).count, 2U);
}

TEST_F(JudgeTest, WantsPosesToKeepComing) {
  empty.Connect(0);
  empty.SendPoses(200, 1000);
  empty.SendPoses(2000, 2500);
  EXPECT_EQ(empty.Broken(), "P9");
}

TEST_F(JudgeTest, WantsPosesUntilTheEndOfTheConnection) {
  empty.Connect(0);
  empty.SendPoses(200, 1000);
  empty.Disconnect(1900);
  EXPECT_EQ(empty.Broken(), "");
  empty.CutOffAt(1900);
  empty.Disconnect(2100);
  EXPECT_EQ(empty.Broken(), "P9");
}

TEST_F(JudgeTest, WantsTheFirstPoseWithinTwoSeconds) {
  empty.Connect(0);
  empty.SendPoses(2100, 2200);
  EXPECT_EQ(empty.Broken(), "");
  empty.CutOffAt(2100);
  empty.SendPoses(2200, 2300);
  EXPECT_EQ(empty.Broken(), "P9");
}

TEST_F(JudgeTest, WantsAtMostAThousandPosesASecond) {
  empty.Connect(0);
  empty.SendPoses(200, 2200, 1.01);
  EXPECT_EQ(empty.Broken(), "");
  empty.CutOffAt(200);
  empty.SendPoses(200, 2200, 0.9);
  EXPECT_EQ(empty.Broken(), "P10");
}

TEST_F(JudgeTest, WantsAnotherFirstPoseThanAPosition) {
  const Bytes position =
      MessageOf(OMBREL_TRACKING_UPDATE, BytesOf(OmbrelTrackingPosition{{}, OMBREL_POSE_POSITION_ONLY}));
  session.Send(260, position);
  EXPECT_EQ(session.Broken(), "P11");
  session.Send(255, Pose());
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeTest, WantsAFrameRate) {
  session.Send(1000, FrameRate(90));
  EXPECT_EQ(session.Broken(), "");
  session.Send(1001, FrameRate(0));
  EXPECT_EQ(session.Broken(), "P12");
}

TEST_F(JudgeTest, WantsAtMostSixtyThreeControllers) {
  for (std::uint32_t id = 0; id < 63; ++id) session.Send(1000, Controller(id));
  EXPECT_EQ(session.Broken(), "");
  session.Send(1001, Controller(63));
  EXPECT_EQ(session.Broken(), "P13");
}

TEST_F(JudgeTest, WantsItsMessagesRead) {
  session.Receive(1000, Pulse(), 1240);
  EXPECT_EQ(session.Broken(), "");
  session.Receive(1300, Pulse(), 1600);
  EXPECT_EQ(session.Broken(), "P14");
}

TEST_F(JudgeTest, NoticesMessagesThatAreNeverRead) {
  session.Receive(1000, Pulse(), MadeUpSession::kEndMs + 100);
  session.CutOffAt(MadeUpSession::kEndMs + 2);
  EXPECT_THAT(session.Violations().at(0).evidence[0], testing::HasSubstr("was not read in the 2000.0 ms until"));
}

TEST_F(JudgeTest, NoticesAFullPipeWhereReadingIsNotWatched) {
  session.Remove(EventKind::kPipeDrained);
  EXPECT_EQ(session.Broken(), "");
  const Bytes pulse = Pulse();
  session.AddPipe(EventKind::kPipeWritten, Pipe::kIn, 1000).bytes = Bytes(pulse.begin(), pulse.begin() + 4);
  session.AddPipe(EventKind::kPipeWritten, Pipe::kIn, 1300).bytes = Bytes(pulse.begin() + 4, pulse.end());
  EXPECT_EQ(session.Broken(), "P14");
}

TEST_F(JudgeTest, KeepsTheFirstOfManyAndCountsTheRest) {
  for (double ms = 1000; ms < 1010; ++ms) session.Send(ms, FrameRate(0));
  const std::vector<Violation> violations = session.Violations();
  ASSERT_EQ(violations.size(), 1U);
  EXPECT_EQ(violations[0].count, 10U);
  EXPECT_THAT(violations[0].evidence, testing::SizeIs(3));
  EXPECT_EQ(violations[0].evidence[0], "at 1.000 s: a FramerateUpdate of 0");
}

}  // namespace
}  // namespace checker::test
