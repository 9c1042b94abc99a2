// What the queue ahead of the companion's pipe keeps, drops and forgets.
#include "link/outgoing_pipe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/clock.h"
#include "support/an_hour_ahead.h"
#include "support/background.h"
#include "support/bytes.h"
#include "support/fake_companion.h"

namespace ombrel::test {
namespace {

class OutgoingPipeTest : public testing::Test {
 protected:
  static constexpr std::uint32_t kMorePulsesThanAnythingHolds = 5000;
  ~OutgoingPipeTest() override { pipe_.Close(); }

  [[nodiscard]] bool Open() {
    companion_.in.Offer();
    return pipe_.Open() && companion_.in.Accept();
  }
  [[nodiscard]] bool OpenAndWrite() { return Open() && pipe_.StartWriting(); }
  void SendPulse(std::uint32_t number) { SendPulse(number, AnHourAhead()); }
  void SendPulse(std::uint32_t number, std::int64_t madeAt) {
    pipe_.Send(LinkMessageType::kHapticPulse, HapticPulse{number, 0, 0, 0}, madeAt);
  }
  void SendAnnouncement() { pipe_.Send(LinkMessageType::kFrameSharingInfo, FrameSharingInfo{}); }
  void SendUntilStuck() {
    for (std::uint32_t i = 0; i < kMorePulsesThanAnythingHolds; ++i) SendPulse(i);
  }
  // The type of each message up to an announcement; empty when there is none, or a part of a message is missing.
  [[nodiscard]] std::vector<std::uint32_t> TypesUpToAnAnnouncement() {
    std::vector<std::uint32_t> types;
    while (const auto message = companion_.Receive()) {
      types.push_back(message->type);
      if (message->type == 2) return types;
    }
    return {};
  }
  // The next bytes that the companion gets are those of a message that is sent now.
  [[nodiscard]] bool IsInStep() {
    SendPulse(77);
    return companion_.in.Receive(20) == Framed(11, Bytes().U32(77).U32(0).U32(0)).Get();
  }

  FakeCompanion companion_;
  OutgoingPipe pipe_;
};

TEST_F(OutgoingPipeTest, LosesWhatIsSentBeforeItWrites) {
  ASSERT_TRUE(Open());
  SendPulse(1);
  SendAnnouncement();
  ASSERT_TRUE(pipe_.StartWriting());
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, LosesWhatIsSentAfterItsEnd) {
  ASSERT_TRUE(OpenAndWrite());
  pipe_.Close();
  SendPulse(1);
  SendAnnouncement();
  ASSERT_TRUE(OpenAndWrite());
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, DropsAPulseThatIsOlderThanItsConnection) {
  const std::int64_t before = PerformanceCounter();
  ASSERT_TRUE(OpenAndWrite());
  SendPulse(1, before);
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, DropsAPulseWhoseTurnComesTooLate) {
  ASSERT_TRUE(OpenAndWrite());
  const std::int64_t made = PerformanceCounter();
  std::this_thread::sleep_for(std::chrono::milliseconds(OutgoingPipe::kLifeMs + 50));
  SendPulse(1, made);
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, DropsThePulsesThatFindTheQueueFull) {
  ASSERT_TRUE(OpenAndWrite());
  SendUntilStuck();
  SendAnnouncement();
  std::vector<std::uint32_t> received;
  for (auto message = companion_.Receive(); message && message->type == 11; message = companion_.Receive()) {
    received.push_back(ReadRecord<std::uint32_t>(message->payload));
  }
  EXPECT_GE(received.size(), OutgoingPipe::kMostWaiting);
  EXPECT_LT(received.size(), kMorePulsesThanAnythingHolds);
  EXPECT_TRUE(std::ranges::is_sorted(received));
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, FindsRoomForTheAnnouncementBehindAFullQueue) {
  ASSERT_TRUE(OpenAndWrite());
  SendUntilStuck();
  SendAnnouncement();
  SendUntilStuck();
  EXPECT_GT(TypesUpToAnAnnouncement().size(), OutgoingPipe::kMostWaiting);
}

TEST_F(OutgoingPipeTest, CancelsItsWriteAndForgetsItsQueueWhenItIsClosed) {
  // At different moments of a message.
  for (int round = 0; round < 20 && !HasFailure(); ++round) {
    ASSERT_TRUE(OpenAndWrite());
    SendUntilStuck();
    SendAnnouncement();
    Background closing([this] { pipe_.Close(); });
    const bool isClosed = closing.Finishes();
    if (!isClosed) companion_.in.Disconnect();
    ASSERT_TRUE(isClosed) << "the companion does not read";
    ASSERT_TRUE(OpenAndWrite());
    EXPECT_FALSE(pipe_.IsBroken());
    EXPECT_TRUE(IsInStep()) << "no byte of the last connection's messages is in this one";
    pipe_.Close();
  }
}

TEST_F(OutgoingPipeTest, StaysUsableForTheNextConnectionWhenItsReaderGoes) {
  ASSERT_TRUE(OpenAndWrite());
  SendUntilStuck();
  companion_.in.Disconnect();
  pipe_.Close();
  ASSERT_TRUE(OpenAndWrite());
  EXPECT_TRUE(IsInStep());
}

}  // namespace
}  // namespace ombrel::test
