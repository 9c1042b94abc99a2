// The link stops at any moment, soon, and leaves nothing running.
#include <chrono>

#include "pipe_client_fixture.h"

namespace ombrel::test {
namespace {

class StoppingTest : public PipeClientTest {
 protected:
  void StopWithinBound() {
    EXPECT_TRUE(StopsWithinBound([this] { client_.Stop(); }));
    EXPECT_FALSE(client_.IsConnected());
  }
};

TEST_F(StoppingTest, WithoutHavingStarted) { StopWithinBound(); }

TEST_F(StoppingTest, RightAfterTheStart) {
  client_.Start();
  StopWithinBound();
}

TEST_F(StoppingTest, BetweenTheTwoPipes) {
  client_.Start();
  companion_.in.Offer();
  ASSERT_TRUE(companion_.in.Accept());
  StopWithinBound();
  EXPECT_TRUE(companion_.in.WaitForClientGone());
}

TEST_F(StoppingTest, WhileTheReaderWaitsForACompanionThatKeepsItsPipesOpen) {
  ASSERT_TRUE(Connect());
  StopWithinBound();
  EXPECT_TRUE(companion_.in.WaitForClientGone());
  EXPECT_TRUE(companion_.out.WaitForClientGone());
}

TEST_F(StoppingTest, InTheMiddleOfAMessage) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(companion_.out.Send(Bytes().U32(100).U32(4).Fill(50)));
  StopWithinBound();
}

TEST_F(StoppingTest, WhileAWriterIsBlocked) {
  ASSERT_TRUE(Connect());
  SendUntilStuck();
  StopWithinBound();
}

TEST_F(StoppingTest, Twice) {
  ASSERT_TRUE(Connect());
  StopWithinBound();
  StopWithinBound();
}

TEST_F(StoppingTest, UnderAFloodOfMessagesAndHearsNothingAfterwards) {
  ASSERT_TRUE(Connect());
  Background flood([this] {
    while (companion_.SendPose(0, 0, 0, 1)) {
    }
  });
  ASSERT_TRUE(WaitFor("tracking", 20));
  StopWithinBound();
  const std::size_t heard = listener_.journal.Size();
  EXPECT_TRUE(flood.Finishes());
  EXPECT_EQ(listener_.journal.Size(), heard);
}

TEST_F(StoppingTest, ForgetsItsListenersAndCanStartAgain) {
  ASSERT_TRUE(Connect());
  StopWithinBound();
  const std::size_t heard = listener_.journal.Size();
  client_.Start();
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitUntil([this] { return client_.IsConnected(); }));
  ASSERT_TRUE(companion_.Send(9, Bytes().U32(72)));
  ASSERT_TRUE(companion_.Send(10, Bytes().U32(5).Fill(188)));
  ASSERT_TRUE(companion_.SendPose(0, 0, 0, 1));
  EXPECT_TRUE(WaitUntil([this] { return client_.HasTrackingData(); }));
  EXPECT_EQ(listener_.journal.Size(), heard);
}

// At many different moments of connecting, of a connection's life and of its end.
TEST_F(StoppingTest, AtAnyMoment) {
  for (int i = 0; i < 30; ++i) {
    CompanionPipeClient client;
    RecordingListener listener(client);
    listener.ListenToAll();
    companion_.Offer();
    client.Start();
    Background companion([&] {
      if (i % 3 == 0 || !companion_.Accept()) return;
      static_cast<void>(companion_.SendPose(0, 0, 0, 1));
      if (i % 3 == 1) companion_.Disconnect();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(i * 11));
    const auto begin = std::chrono::steady_clock::now();
    client.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kStopBound);
    // A companion that waits for a second pipe that is not opened any more is let go.
    PipeClient stray;
    while (!companion.IsDoneWithin(std::chrono::milliseconds(5))) {
      static_cast<void>(stray.Open(kPipeToCompanion, PipeClient::Direction::kWrite));
      static_cast<void>(stray.Open(kPipeFromCompanion, PipeClient::Direction::kRead));
    }
  }
}

}  // namespace
}  // namespace ombrel::test
