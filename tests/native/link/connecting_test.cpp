// How the link comes up and goes down.
#include <chrono>
#include <thread>

#include "pipe_client_fixture.h"

namespace ombrel::test {
namespace {

TEST_F(PipeClientTest, ConnectsToACompanionThatIsThere) {
  companion_.Offer();
  client_.Start();
  ASSERT_TRUE(companion_.Accept());
  EXPECT_TRUE(WaitFor("up"));
  EXPECT_TRUE(client_.IsConnected());
}

TEST_F(PipeClientTest, StaysSilentWithoutACompanionAndFindsItWhenItComes) {
  client_.Start();
  // Long enough for several tries.
  std::this_thread::sleep_for(std::chrono::milliseconds(350));
  EXPECT_FALSE(client_.IsConnected());
  EXPECT_EQ(listener_.journal.Size(), 0U);
  EXPECT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitFor("up"));
}

TEST_F(PipeClientTest, AnnouncesANewConnectionOnce) {
  ASSERT_TRUE(Connect());
  EXPECT_TRUE(client_.TakeNewConnection());
  EXPECT_FALSE(client_.TakeNewConnection());
}

TEST_F(PipeClientTest, KeepsTheFirstPipeWhileTheSecondIsMissing) {
  ASSERT_TRUE(ConnectFirstPipe());
  // The end of the stream would be something to receive. Several tries of the second pipe go by.
  EXPECT_FALSE(companion_.in.HasData(600));
  EXPECT_FALSE(client_.IsConnected());
  companion_.out.Offer();
  EXPECT_TRUE(companion_.out.Accept());
  EXPECT_TRUE(WaitFor("up"));
}

TEST_F(PipeClientTest, StartsAfreshWhenTheCompanionRestartsBetweenThePipes) {
  ASSERT_TRUE(ConnectFirstPipe());
  companion_.in.Disconnect();
  EXPECT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitFor("up"));
  EXPECT_TRUE(SendPose());
}

// The driver may open the second pipe of the new companion before it notices that its first is the old one's.
TEST_F(PipeClientTest, StartsAfreshWhenTheCompanionRestartsWithItsSecondPipeFirst) {
  ASSERT_TRUE(ConnectFirstPipe());
  companion_.out.Offer();
  companion_.in.Disconnect();
  companion_.in.Offer();
  ASSERT_TRUE(companion_.in.Accept());
  ASSERT_TRUE(companion_.out.Accept());
  // A second pipe that was opened in vain is closed again, and its server offers it once more.
  if (!WaitUntil([&] { return client_.IsConnected() || companion_.out.HasData(0); }) || !client_.IsConnected()) {
    companion_.out.Offer();
    ASSERT_TRUE(companion_.out.Accept());
  }
  EXPECT_TRUE(WaitFor("up"));
  EXPECT_TRUE(SendPose());
}

TEST_F(PipeClientTest, ReportsADropAndComesBack) {
  ASSERT_TRUE(Connect());
  companion_.Disconnect();
  EXPECT_TRUE(WaitFor("down"));
  EXPECT_FALSE(client_.IsConnected());
  EXPECT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitFor("up", 2));
  EXPECT_TRUE(client_.TakeNewConnection());
}

TEST_F(PipeClientTest, ReportsEachDropBeforeItOpensTheLinkAnew) {
  ASSERT_TRUE(Connect());
  Lines expected{"up"};
  for (std::size_t times = 2; times <= 5; ++times) {
    // The next companion is there before the last one goes.
    companion_.Offer();
    companion_.Disconnect();
    ASSERT_TRUE(companion_.Accept());
    ASSERT_TRUE(WaitFor("up", times));
    expected.insert(expected.end(), {"down", "up"});
  }
  EXPECT_EQ(listener_.journal.All(), expected);
}

TEST_F(PipeClientTest, ClosesBothPipesWhenOneEnds) {
  ASSERT_TRUE(Connect());
  companion_.out.Disconnect();
  EXPECT_TRUE(WaitFor("down"));
  EXPECT_TRUE(companion_.in.WaitForClientGone());
}

TEST_F(PipeClientTest, ReportsACompanionThatGoesAtOnce) {
  client_.Start();
  companion_.Offer();
  ASSERT_TRUE(companion_.Accept());
  companion_.Disconnect();
  // Up and down again, or never up: never up for good.
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitUntil([&] { return client_.IsConnected(); }));
  EXPECT_TRUE(SendPose());
}

TEST_F(PipeClientTest, OutlivesAListenerThatThrows) {
  ThrowingListener throwing;
  client_.AddListener(static_cast<IConnectionStateChangedListener*>(&throwing));
  RecordingListener behind(client_);
  behind.ListenToAll();
  ASSERT_TRUE(Connect());
  EXPECT_TRUE(behind.journal.WaitForLine("up"));
  companion_.Disconnect();
  EXPECT_TRUE(behind.journal.WaitForLine("down"));
  client_.Stop();
}

TEST_F(PipeClientTest, IgnoresThatItsOutgoingPipeAloneHasGone) {
  ASSERT_TRUE(Connect());
  companion_.in.Disconnect();
  client_.Send(LinkMessageType::kHapticPulse, HapticPulse{});
  EXPECT_TRUE(SendPose());
  companion_.Disconnect();
  EXPECT_TRUE(WaitFor("down"));
  EXPECT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitFor("up", 2));
}

}  // namespace
}  // namespace ombrel::test
