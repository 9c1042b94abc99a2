// What the companion gets from the link.
#include <array>
#include <atomic>
#include <utility>

#include "pipe_client_fixture.h"

namespace ombrel::test {
namespace {

class SendingTest : public PipeClientTest {
 protected:
  static HapticPulse Pulse(std::uint32_t sender, std::uint32_t number) { return {sender, number, 0, 0}; }
  void SendPulse(std::uint32_t sender, std::uint32_t number) {
    client_.Send(LinkMessageType::kHapticPulse, Pulse(sender, number), AnHourAhead());
  }
};

TEST_F(SendingTest, SendsNothingWithoutAConnection) {
  client_.Start();
  SendPulse(1, 1);
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitFor("up"));
  SendPulse(1, 2);
  EXPECT_EQ(companion_.in.Receive(20), Bytes().U32(12).U32(11).U32(1).U32(2).U32(0).Get());
}

TEST_F(SendingTest, MessagesOfSeveralThreadsComeWholeAndInOrder) {
  ASSERT_TRUE(Connect());
  std::atomic<bool> done{false};
  const auto send = [&](std::uint32_t sender) {
    for (std::uint32_t number = 1; !done; ++number) SendPulse(sender, number);
  };
  Background first([&] { send(0); }), second([&] { send(1); });
  std::array<std::uint32_t, 2> last{};
  // Until both have been heard for a while: the processor may be one sender's for long.
  for (int i = 0; !HasFailure() && (i < 2000 || last[0] == 0 || last[1] == 0); ++i) {
    const auto message = companion_.Receive();
    EXPECT_TRUE(message && message->type == 11 && message->payload.size() == sizeof(HapticPulse)) << "message " << i;
    if (HasFailure()) break;
    const auto pulse = ReadRecord<HapticPulse>(message->payload);
    EXPECT_GT(pulse.timestampMicroseconds, std::exchange(last.at(pulse.controllerId), pulse.timestampMicroseconds));
  }
  done = true;
}

// Nobody reads while messages are sent, and nothing but reading lets them go on.
TEST_F(SendingTest, ACompanionThatDoesNotReadHoldsNobody) {
  ASSERT_TRUE(Connect());
  Background sender([this] { SendUntilStuck(); });
  const bool isDone = sender.Finishes();
  if (!isDone) companion_.Disconnect();
  EXPECT_TRUE(isDone);
  EXPECT_TRUE(companion_.SendPose(0, 0, 0, 1));
  EXPECT_TRUE(WaitFor("tracking"));
  EXPECT_TRUE(companion_.Receive().has_value()) << "the connection is still up";
}

TEST_F(SendingTest, ACompanionThatDoesNotReadIsLetGo) {
  ASSERT_TRUE(Connect());
  SendUntilStuck();
  companion_.Disconnect();
  EXPECT_TRUE(WaitFor("down"));
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitFor("up", 2));
  SendPulse(7, 7);
  EXPECT_EQ(companion_.in.Receive(20), Bytes().U32(12).U32(11).U32(7).U32(7).U32(0).Get())
      << "nothing of the connection before";
}

}  // namespace
}  // namespace ombrel::test
