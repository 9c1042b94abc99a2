// What a connection's end leaves of the messages that were on their way.
#include "link/outgoing_pipe.h"

#include <gtest/gtest.h>

#include "support/background.h"
#include "support/bytes.h"
#include "support/fake_companion.h"

namespace ombrel::test {
namespace {

using Result = OutgoingPipe::Result;

class OutgoingPipeTest : public testing::Test {
 protected:
  // Opened, but with messages not let out yet.
  [[nodiscard]] bool Open() {
    companion_.in.Offer();
    return pipe_.Open() && companion_.in.Accept();
  }
  [[nodiscard]] bool OpenAndAdmit() {
    if (!Open()) return false;
    pipe_.Admit();
    return true;
  }
  Result Write(std::span<const std::byte> payload) { return pipe_.Write(LinkMessageType::kHapticPulse, payload); }
  // Far more than the pipe holds, so that its writer stays in the middle of it.
  static Bytes Huge() { return Bytes().Fill(50'000'000, 0xEE); }
  // The next bytes that the companion gets are those of a message that is written now.
  [[nodiscard]] bool IsInStep() {
    const Bytes payload = Bytes().U32(1).U32(2).U32(3);
    return Write(payload) == Result::kSent && companion_.in.Receive(20) == Framed(11, payload).Get();
  }

  FakeCompanion companion_;
  OutgoingPipe pipe_;
};

TEST_F(OutgoingPipeTest, LosesWhatIsWrittenBeforeMessagesAreLetOut) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(Write(Bytes().Fill(12, 0xEE)), Result::kSent);
  pipe_.Admit();
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, LetsMessagesOutOfEachConnectionAnew) {
  ASSERT_TRUE(OpenAndAdmit());
  pipe_.Close();
  ASSERT_TRUE(Open());
  // Its sender found the last connection up and comes late.
  EXPECT_EQ(Write(Bytes().Fill(12, 0xEE)), Result::kSent);
  pipe_.Admit();
  EXPECT_TRUE(IsInStep());
}

TEST_F(OutgoingPipeTest, IsClosedOnlyWhenItsWriterIsOut) {
  // At different moments of the write.
  for (int round = 0; round < 20 && !HasFailure(); ++round) {
    ASSERT_TRUE(OpenAndAdmit());
    Background writer([this] { EXPECT_EQ(Write(Huge()), Result::kBroken); });
    ASSERT_TRUE(companion_.in.HasData(kPatience.count()));
    pipe_.Close();
    ASSERT_TRUE(Open());
    const bool isOut = writer.Finishes();
    if (!isOut) companion_.in.Disconnect();
    ASSERT_TRUE(isOut) << "it writes on, into the next connection";
    pipe_.Admit();
    EXPECT_TRUE(IsInStep()) << "no byte of the last connection's message is in this one";
    EXPECT_FALSE(pipe_.IsBroken());
    pipe_.Close();
  }
}

TEST_F(OutgoingPipeTest, ForgetsHalfAMessageWithItsConnection) {
  ASSERT_TRUE(OpenAndAdmit());
  Background writer([this] { EXPECT_EQ(Write(Huge()), Result::kBroken); });
  ASSERT_TRUE(WaitUntil([this] {
    pipe_.CancelStalledWrite();
    return pipe_.IsBroken();
  }));
  ASSERT_TRUE(writer.Finishes());
  pipe_.Close();
  EXPECT_FALSE(pipe_.IsBroken());
  ASSERT_TRUE(OpenAndAdmit());
  EXPECT_TRUE(IsInStep());
}

}  // namespace
}  // namespace ombrel::test
