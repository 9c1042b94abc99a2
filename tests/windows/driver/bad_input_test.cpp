// Messages that no companion should send: nothing is lost, nothing crashes, and a good message after them works.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "companion/messages.h"
#include "runtime/wait.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using bench::Bytes;
using bench::MessageType;

class BadInputTest : public LinkTest {
 protected:
  void SetUp() override { Connect(); }

  void ExpectNoReactionTo(const Bytes& bytes) {
    const std::size_t poses = PosesSent();
    NewLogLines();
    Send(bytes);
    Fence();
    EXPECT_EQ(PosesSent(), poses + 1);
    EXPECT_TRUE(NewLogLines().empty());
    EXPECT_EQ(runtime.Host().Added().size(), 1U);
    EXPECT_EQ(server.Connections(), 1U) << "the connection did not last";
  }
};

Bytes Cut(Bytes message, std::size_t payloadBytes) {
  return bench::EncodeMessage(message[4], std::span(message).subspan(bench::kHeaderBytes).first(payloadBytes));
}

// A TrackingUpdate with a format code and `poseBytes` bytes before it.
Bytes Tracking(std::uint32_t format, std::size_t poseBytes) {
  return bench::EncodeTracking(format, Bytes(poseBytes, 0));
}

TEST_F(BadInputTest, TrackingUpdatesShorterThanTheirFormatAreDropped) {
  const std::pair<std::uint32_t, std::size_t> tooShort[] = {{0, 47}, {0, 0},  {2, 35}, {3, 35}, {4, 27},
                                                            {5, 11}, {6, 47}, {7, 47}, {254, 0}};
  for (const auto& [format, poseBytes] : tooShort) {
    SCOPED_TRACE("format " + std::to_string(format));
    ExpectNoReactionTo(Tracking(format, poseBytes));
  }
}

TEST_F(BadInputTest, TrackingUpdatesWithoutAFormatAreDropped) {
  for (std::size_t length = 0; length < 4; ++length) {
    ExpectNoReactionTo(bench::EncodeMessage(MessageType::TrackingUpdate, Bytes(length, 0)));
  }
}

TEST_F(BadInputTest, LongTrackingUpdatesAreTakenByTheirLastFourBytes) {
  Bytes pose(200, 0);
  pose[14] = 0x80, pose[15] = 0x3F;  // w = 1
  pose[18] = 0x40, pose[19] = 0x40;  // x = 3
  EXPECT_EQ(SendForPose(bench::EncodeTracking(4, pose)).vecPosition[0], 3.0);
}

TEST_F(BadInputTest, ShortFrameRatesAreDropped) {
  ExpectNoReactionTo(Cut(bench::EncodeFramerateUpdate(72), 3));
  ExpectNoReactionTo(Cut(bench::EncodeFramerateUpdate(72), 0));
}

TEST_F(BadInputTest, LongFrameRatesAreTakenByTheirFirstFourBytes) {
  Send(bench::EncodeMessage(MessageType::FramerateUpdate, Bytes{75, 0, 0, 0, 1, 2, 3, 4, 5}));
  EXPECT_TRUE(WaitFor([&] { return runtime.Log().Contains("Updating headset fps, new value: 75.000000 \n"); }));
}

TEST_F(BadInputTest, ShortControllerRecordsAreDropped) {
  for (const std::size_t length : {0U, 4U, 191U}) {
    ExpectNoReactionTo(bench::EncodeMessage(MessageType::ControllerUpdate, Bytes(length, 0)));
  }
}

TEST_F(BadInputTest, UnknownTypesAreReadWholeAndDropped) {
  for (const std::uint32_t type : {0U, 1U, 2U, 3U, 5U, 11U, 12U, 255U, 0xFFFFFFFFU}) {
    SCOPED_TRACE("type " + std::to_string(type));
    ExpectNoReactionTo(bench::EncodeMessage(type, Bytes(37, 0xAB)));
    ExpectNoReactionTo(bench::EncodeMessage(type, Bytes()));
  }
}

TEST_F(BadInputTest, LargestPayloadIsReadWholeAndDropped) {
  ExpectNoReactionTo(bench::EncodeMessage(3, Bytes(65536, 0xAB)));
}

TEST_F(BadInputTest, RecenterRequestsOfAnyLengthAreTaken) {
  ExpectNoReactionTo(bench::EncodeMessage(MessageType::RecenterRequest, Bytes(500, 0xAB)));
}

TEST_F(BadInputTest, OddNumbersInPosesDoNotEndTheLink) {
  const Bytes notANumber(48, 0xFF);
  for (const std::uint32_t format : {0U, 2U, 3U, 4U, 5U, 6U}) Send(bench::EncodeTracking(format, notANumber));
  Send(bench::EncodeRecenterRequest());
  SendForPose(bench::EncodeWithoutPose(bench::PoseFormat::Repeat));
  EXPECT_EQ(server.Connections(), 1U);
}

TEST_F(BadInputTest, MessagesInSinglePiecesOfOneByteAreReadAll) {
  const Bytes message = bench::EncodeQuaternionAndPosition({}, {7, 8, 9});
  const std::size_t poses = PosesSent();
  for (const std::uint8_t byte : message) Send({byte});
  EXPECT_TRUE(WaitFor([&] { return PosesSent() == poses + 1; }));
  EXPECT_EQ(runtime.Poses().Latest(0)->pose.vecPosition[2], 9.0);
}

TEST_F(BadInputTest, ManyMessagesInOnePieceAreReadAll) {
  Bytes all;
  for (int i = 0; i < 300; ++i) std::ranges::copy(bench::EncodeQuaternionAndPosition({}, {}), std::back_inserter(all));
  const std::size_t poses = PosesSent();
  Send(all);
  EXPECT_TRUE(WaitFor([&] { return PosesSent() == poses + 300; }));
}

TEST_F(BadInputTest, PayloadOverTheLimitEndsTheConnectionAndTheNextOneWorks) {
  const std::size_t poses = PosesSent();
  Bytes tooLong = bench::EncodeMessage(3, Bytes(8, 0));
  tooLong[0] = 1, tooLong[1] = 0, tooLong[2] = 1;  // 65537
  Send(tooLong);
  ASSERT_TRUE(bench::WaitUntil([&] { return server.Connections() == 2; }, std::chrono::milliseconds(kTimeoutMs)));
  EXPECT_EQ(PosesSent(), poses);
  Fence();
}

TEST_F(BadInputTest, GarbageNeverBlocksTheNextConnection) {
  std::mt19937 random(4711);
  for (int round = 0; round < 5; ++round) {
    Bytes garbage(3000);
    std::ranges::generate(garbage, [&] { return static_cast<std::uint8_t>(random()); });
    static_cast<void>(server.Send(garbage));  // the driver may hang up meanwhile
    server.Close();
    ASSERT_TRUE(bench::WaitUntil([&] { return server.Open(); }, std::chrono::milliseconds(kTimeoutMs)));
    ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
    Fence();
  }
}

}  // namespace
}  // namespace ombrel::test
