// What the link makes of the companion's messages.
#include <random>
#include <stdexcept>

#include "pipe_client_fixture.h"

namespace ombrel::test {
namespace {

class ReceivingTest : public PipeClientTest {
 protected:
  void SetUp() override { ASSERT_TRUE(Connect()); }
  [[nodiscard]] Lines Heard() const { return listener_.journal.From(1); }
};

TEST_F(ReceivingTest, PublishesAPoseBeforeItTellsOfIt) {
  EXPECT_FALSE(client_.HasTrackingData());
  EXPECT_EQ(client_.PublishedPose().position, Vector3{});
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(WaitFor("tracking"));
  EXPECT_TRUE(client_.HasTrackingData());
  EXPECT_EQ(client_.PublishedPose().orientation, (Quaternion{0, 0.6F, 0, 0.8F}));
  EXPECT_EQ(client_.PublishedPose().position, (Vector3{0.25F, 1.5F, -0.75F}));
}

TEST_F(ReceivingTest, TellsOfAPositionButPublishesItWithTheNextPose) {
  const std::uint64_t before = client_.PublishedPose().timestamp;
  ASSERT_TRUE(companion_.Send(4, Bytes().F32({4, 5, 6}).U32(5)));
  ASSERT_TRUE(WaitFor("tracking"));
  EXPECT_TRUE(client_.HasTrackingData());
  EXPECT_EQ(client_.PublishedPose().position, Vector3{});
  EXPECT_EQ(client_.PublishedPose().timestamp, before);
  ASSERT_TRUE(companion_.Send(4, Bytes().U32(1)));
  ASSERT_TRUE(WaitFor("tracking", 2));
  EXPECT_EQ(client_.PublishedPose().position, (Vector3{4, 5, 6}));
}

TEST_F(ReceivingTest, RecentersOnRequestFromTheNextPoseOn) {
  ASSERT_TRUE(companion_.SendPose(0, 0.70710678F, 0, 0.70710678F));
  ASSERT_TRUE(companion_.Send(8, Bytes().Fill(3)));
  ASSERT_TRUE(SendMark());
  EXPECT_NEAR(client_.PublishedPose().orientation.y, 0.70710678F, 1e-6);
  ASSERT_TRUE(companion_.Send(4, Bytes().U32(1)));
  ASSERT_TRUE(WaitFor("tracking", 2));
  EXPECT_NEAR(client_.PublishedPose().orientation.y, 0.0F, 1e-6);
}

TEST_F(ReceivingTest, PassesFrameRatesOnUnchanged) {
  for (const std::uint32_t rate : {72U, 0U, 0x80000000U, 0xFFFFFFFFU}) {
    ASSERT_TRUE(companion_.Send(9, Bytes().U32(rate).Fill(rate % 7)));
  }
  ASSERT_TRUE(WaitFor("framerate 4294967295"));
  EXPECT_EQ(Heard(), (Lines{"framerate 72", "framerate 0", "framerate 2147483648", "framerate 4294967295"}));
}

TEST_F(ReceivingTest, PassesTheFirst192BytesOfALongerControllerRecordOn) {
  ASSERT_TRUE(companion_.Send(10, Bytes().U32(5).Fill(188)));
  ASSERT_TRUE(companion_.Send(10, Bytes().U32(6).Fill(188).U32(7).Fill(400)));
  ASSERT_TRUE(WaitFor("controller 6"));
  ASSERT_TRUE(SendMark());
  EXPECT_EQ(Heard(), (Lines{"controller 5", "controller 6", Mark()}));
}

// Spoils its own copy.
class VandalListener final : public IControllerUpdatedListener {
 public:
  void OnControllerUpdated(const ControllerUpdate* record) override {
    const_cast<ControllerUpdate*>(record)->controllerId = 99;
  }
};

TEST_F(ReceivingTest, GivesEachListenerACopyOfItsOwn) {
  VandalListener vandal;
  client_.AddListener(&vandal);
  RecordingListener behind(client_);
  behind.ListenToMessages();
  ASSERT_TRUE(companion_.Send(10, Bytes().U32(5).Fill(188)));
  EXPECT_TRUE(behind.journal.WaitForSize(1));
  EXPECT_EQ(behind.journal.All(), Lines{"controller 5"});
  client_.Stop();
}

TEST_F(ReceivingTest, OutlivesAListenerThatThrows) {
  ThrowingListener throwing;
  client_.AddListener(static_cast<ITrackingUpdatedListener*>(&throwing));
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  EXPECT_TRUE(SendMark());
  client_.Stop();
}

TEST_F(ReceivingTest, AListenerThatThrowsHidesNoPoseFromTheNext) {
  ThrowingListener throwing;
  client_.AddListener(static_cast<ITrackingUpdatedListener*>(&throwing));
  RecordingListener behind(client_);
  behind.ListenToMessages();
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  ASSERT_TRUE(SendMark() && behind.journal.WaitForLine(Mark()));
  EXPECT_EQ(behind.journal.All(), (Lines{"tracking", Mark()}));
  client_.Stop();
}

class ThrowingRateListener final : public IFramerateUpdatedListener {
 public:
  void OnFramerateUpdated(std::uint32_t /*framesPerSecond*/) override { throw std::runtime_error("no"); }
};

TEST_F(ReceivingTest, AListenerThatThrowsHidesNoFrameRateFromTheNext) {
  ThrowingRateListener throwing;
  client_.AddListener(&throwing);
  RecordingListener behind(client_);
  behind.ListenToMessages();
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(72)));
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  ASSERT_TRUE(behind.journal.WaitForLine("tracking"));
  EXPECT_EQ(behind.journal.All(), (Lines{"framerate 72", "tracking"}));
  client_.Stop();
}

TEST_F(ReceivingTest, DropsWhatIsTooShortAndStaysInStep) {
  for (const std::uint32_t type : {4U, 9U, 10U}) {
    for (std::size_t size = 0; size < 4; ++size) ASSERT_TRUE(companion_.Send(type, Bytes().Fill(size)));
  }
  ASSERT_TRUE(companion_.Send(4, Bytes().Fill(47).U32(0)));
  ASSERT_TRUE(companion_.Send(4, Bytes().Fill(27).U32(4)));
  ASSERT_TRUE(companion_.Send(10, Bytes().Fill(191)));
  ASSERT_TRUE(SendMark());
  EXPECT_EQ(Heard(), Lines{Mark()});
  EXPECT_FALSE(client_.HasTrackingData());
}

TEST_F(ReceivingTest, ReadsMessagesThatItDoesNotKnowWhole) {
  for (const std::uint32_t type : {0U, 2U, 3U, 11U, 15U, 0xFFFFFFFFU}) {
    // A payload that looks like a message of its own.
    ASSERT_TRUE(companion_.Send(type, Framed(9, Bytes().U32(1))));
    ASSERT_TRUE(companion_.Send(type));
  }
  ASSERT_TRUE(companion_.Send(3, Bytes().Fill(65536, 9)));
  ASSERT_TRUE(SendMark());
  EXPECT_EQ(Heard(), Lines{Mark()});
}

TEST_F(ReceivingTest, GoesOnBehindAShutdownRequest) {
  ASSERT_TRUE(companion_.Send(14));
  ASSERT_TRUE(companion_.Send(14, Bytes().Fill(9)));
  EXPECT_TRUE(SendMark());
}

TEST_F(ReceivingTest, EndsTheConnectionForAPayloadThatIsTooLong) {
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  ASSERT_TRUE(companion_.out.Send(Bytes().U32(65537).U32(3)));
  EXPECT_TRUE(WaitFor("down"));
  EXPECT_EQ(listener_.journal.Count("tracking"), 1U);
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  EXPECT_TRUE(WaitFor("tracking", 2));
}

TEST_F(ReceivingTest, SurvivesGarbageAndMeetsTheNextCompanion) {
  std::mt19937 random(5);
  Bytes garbage;
  for (int i = 0; i < 1000; ++i) garbage.U32(static_cast<std::uint32_t>(random()));
  // The link may have gone before all of it is out.
  static_cast<void>(companion_.out.Send(garbage));
  ASSERT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  EXPECT_TRUE(SendMark());
}

TEST_F(ReceivingTest, TakesMessagesHoweverTheirBytesCome) {
  const Bytes pose = Framed(4, Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}).U32(4));
  for (const std::byte byte : pose.Get()) ASSERT_TRUE(companion_.out.Send(std::span(&byte, 1)));
  Bytes many;
  for (int i = 0; i < 50; ++i) many.Append(pose);
  ASSERT_TRUE(companion_.out.Send(many));
  EXPECT_TRUE(WaitFor("tracking", 51));
}

TEST_F(ReceivingTest, HalfAMessageOfOneConnectionIsNoPartOfTheNext) {
  ASSERT_TRUE(companion_.out.Send(Bytes().U32(100).U32(4).Fill(50)));
  companion_.Disconnect();
  ASSERT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  EXPECT_TRUE(SendMark());
}

TEST_F(ReceivingTest, KeepsPoseAndRecenteringOverAReconnect) {
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(companion_.Send(8));
  ASSERT_TRUE(SendMark());
  companion_.Disconnect();
  ASSERT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F));
  ASSERT_TRUE(WaitFor("tracking", 2));
  EXPECT_NEAR(client_.PublishedPose().orientation.y, 0.0F, 1e-6);
}

}  // namespace
}  // namespace ombrel::test
