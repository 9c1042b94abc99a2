// What the companion gets from the link.
#include <functional>

#include "pipe_client_fixture.h"

namespace ombrel::test {
namespace {

using Result = OutgoingPipe::Result;

class SendingTest : public PipeClientTest {
 protected:
  Result Send(std::span<const std::byte> payload) { return client_.Send(LinkMessageType::kHapticPulse, payload); }
  // Writes until the companion's pipe is full and the link gives up; what the last write said.
  Result SendUntilStuck() {
    const Bytes payload = Bytes().Fill(40000, 1);
    Result result = Result::kSent;
    for (int i = 0; i < 1000 && client_.IsConnected() && result == Result::kSent; ++i) result = Send(payload);
    return result;
  }
};

TEST_F(SendingTest, SendsNothingWithoutAConnection) {
  client_.Start();
  EXPECT_EQ(Send(Bytes().Fill(12)), Result::kSent);
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitFor("up"));
  ASSERT_EQ(Send(Bytes().U32(1).U32(2).U32(3)), Result::kSent);
  EXPECT_EQ(companion_.in.Receive(20), Bytes().U32(12).U32(11).U32(1).U32(2).U32(3).Get());
}

TEST_F(SendingTest, SendsAMessageOfNoBytes) {
  ASSERT_TRUE(Connect());
  ASSERT_EQ(Send({}), Result::kSent);
  EXPECT_EQ(companion_.in.Receive(8), Bytes().U32(0).U32(11).Get());
}

TEST_F(SendingTest, MessagesOfSeveralThreadsComeWhole) {
  ASSERT_TRUE(Connect());
  constexpr int kMessages = 1000;
  const auto send = [this](std::uint8_t fill, std::size_t size) {
    for (int i = 0; i < kMessages; ++i) static_cast<void>(Send(Bytes().Fill(size, fill)));
  };
  Background small(std::bind_front(send, 1, 12)), large(std::bind_front(send, 2, 76));
  for (int i = 0; i < 2 * kMessages; ++i) {
    const auto message = companion_.Receive();
    ASSERT_TRUE(message.has_value());
    const bool isSmall = message->payload == Bytes().Fill(12, 1).Get();
    const bool isLarge = message->payload == Bytes().Fill(76, 2).Get();
    ASSERT_TRUE(message->type == 11 && (isSmall || isLarge)) << "message " << i;
  }
}

TEST_F(SendingTest, ACompanionThatStopsReadingBlocksNobodyForGoodAndIsLetGo) {
  ASSERT_TRUE(Connect());
  Background sender([this] { EXPECT_NE(SendUntilStuck(), Result::kSent); });
  EXPECT_TRUE(sender.Finishes());
  companion_.Disconnect();
  EXPECT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitFor("up", 2));
  EXPECT_EQ(Send(Bytes().Fill(12)), Result::kSent);
  EXPECT_TRUE(companion_.Receive().has_value());
}

TEST_F(SendingTest, HalfAMessageEndsTheConnection) {
  ASSERT_TRUE(Connect());
  Background sender([this] {
    // Far more than the pipe holds, so that it stops in the middle.
    EXPECT_EQ(Send(Bytes().Fill(50'000'000)), Result::kBroken);
  });
  EXPECT_TRUE(sender.Finishes());
  EXPECT_TRUE(WaitFor("down"));
  EXPECT_TRUE(companion_.in.WaitForClientGone());
}

TEST_F(SendingTest, HalfAMessageEndsNoConnectionButItsOwn) {
  ASSERT_TRUE(Connect());
  Background sender([this] { EXPECT_EQ(Send(Bytes().Fill(50'000'000)), Result::kBroken); });
  ASSERT_TRUE(sender.Finishes());
  ASSERT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitFor("up", 2));
  // Some rounds of the connect thread, each of which would end it.
  EXPECT_FALSE(companion_.in.HasData(400));
  EXPECT_EQ(Send(Bytes().Fill(12)), Result::kSent);
  EXPECT_TRUE(companion_.Receive().has_value());
  EXPECT_EQ(listener_.journal.Count("down"), 1U);
}

TEST_F(SendingTest, ADropFreesAWriterThatIsBlocked) {
  ASSERT_TRUE(Connect());
  Background sender([this] { static_cast<void>(Send(Bytes().Fill(50'000'000))); });
  companion_.Disconnect();
  EXPECT_TRUE(sender.Finishes());
  EXPECT_TRUE(WaitFor("down"));
}

}  // namespace
}  // namespace ombrel::test
