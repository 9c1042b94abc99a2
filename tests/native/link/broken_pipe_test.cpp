// A write to the companion that fails while its pipe is whole: after half a message the stream cannot be followed.
#include <dlfcn.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>

#include "pipe_client_fixture.h"

namespace {

// A message is written in three pieces.
constexpr int kLength = 0, kType = 1, kPayload = 2;
std::atomic<int> piecesBeforeFailure = -1;  // negative: none fails

}  // namespace

// Interposed: the program's own symbol comes before the C library's and the sanitizer's.
extern "C" ssize_t send(int socket, const void* bytes, std::size_t size, int flags) {
  static const auto next = reinterpret_cast<decltype(&send)>(dlsym(RTLD_NEXT, "send"));
  if (piecesBeforeFailure >= 0 && piecesBeforeFailure-- == 0) {
    errno = EIO;
    return -1;
  }
  return next(socket, bytes, size, flags);
}

namespace ombrel::test {
namespace {

class BrokenPipeTest : public PipeClientTest {
 protected:
  void SendPulseWithout(int piece) {
    piecesBeforeFailure = piece;
    client_.Send(LinkMessageType::kHapticPulse, HapticPulse{}, AnHourAhead());
  }
  void ExpectANewConnection() {
    EXPECT_TRUE(WaitFor("down"));
    EXPECT_TRUE(companion_.in.WaitForClientGone());
    ASSERT_TRUE(companion_.Connect());
    ASSERT_TRUE(WaitFor("up", 2));
    client_.Send(LinkMessageType::kHapticPulse, HapticPulse{7, 7, 0, 0}, AnHourAhead());
    EXPECT_EQ(companion_.in.Receive(20), Framed(11, Bytes().U32(7).U32(7).U32(0)).Get());
  }
};

TEST_F(BrokenPipeTest, ALengthWithoutAMessageEndsTheConnection) {
  ASSERT_TRUE(Connect());
  SendPulseWithout(kType);
  ExpectANewConnection();
}

TEST_F(BrokenPipeTest, AHeaderWithoutAPayloadEndsTheConnection) {
  ASSERT_TRUE(Connect());
  SendPulseWithout(kPayload);
  ExpectANewConnection();
}

TEST_F(BrokenPipeTest, APulseOfWhichNothingCouldBeWrittenIsLostAlone) {
  ASSERT_TRUE(Connect());
  SendPulseWithout(kLength);
  EXPECT_TRUE(WaitUntil([] { return piecesBeforeFailure < 0; }));
  client_.Send(LinkMessageType::kHapticPulse, HapticPulse{8, 8, 0, 0}, AnHourAhead());
  EXPECT_EQ(companion_.in.Receive(20), Framed(11, Bytes().U32(8).U32(8).U32(0)).Get());
  EXPECT_TRUE(client_.IsConnected());
}

TEST_F(BrokenPipeTest, AnAnnouncementOfWhichNothingCouldBeWrittenEndsTheConnection) {
  ASSERT_TRUE(Connect());
  piecesBeforeFailure = kLength;
  client_.Send(LinkMessageType::kFrameSharingInfo, FrameSharingInfo{});
  ExpectANewConnection();
}

}  // namespace
}  // namespace ombrel::test
