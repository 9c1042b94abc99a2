// What the link relies on in a pipe, shown on the body for local sockets.
#include "platform/pipe.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "support/fake_companion.h"
#include "support/wait.h"

namespace ombrel::test {
namespace {

class PipeClientTest : public testing::Test {
 protected:
  bool Open() { return pipe_.Open(R"(\\.\pipe\Some)", PipeClient::Direction::kRead); }
  bool Connect() {
    server_.Offer();
    return Open() && server_.Accept();
  }
  bool Read() {
    std::size_t got = 0;
    return pipe_.ReadSome(buffer_.data(), buffer_.size(), got);
  }

  PipeFolder folder_;
  ServerPipe server_{folder_.PathOf("Some")};
  PipeClient pipe_;
  std::array<std::byte, 16> buffer_{};
};

TEST_F(PipeClientTest, CannotOpenWhatNobodyOffers) {
  EXPECT_FALSE(Open());
  EXPECT_FALSE(pipe_.IsOpen());
}

TEST_F(PipeClientTest, TakesWhatIsThereAndNoMoreThanThereIsRoomFor) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(server_.Send(Bytes().Fill(20, 7)));
  std::size_t got = 0;
  while (got < 20) {
    std::size_t count = 0;
    ASSERT_TRUE(pipe_.ReadSome(buffer_.data(), buffer_.size(), count));
    ASSERT_GT(count, 0U);
    ASSERT_LE(count, buffer_.size());
    got += count;
  }
  EXPECT_EQ(got, 20U);
}

TEST_F(PipeClientTest, AReadEndsWhenTheFarEndGoes) {
  ASSERT_TRUE(Connect());
  EXPECT_FALSE(pipe_.IsPeerGone());
  server_.Disconnect();
  EXPECT_FALSE(Read());
  EXPECT_TRUE(pipe_.IsPeerGone());
}

TEST_F(PipeClientTest, CancellingUntilItIsOutEndsAnotherThreadsRead) {
  ASSERT_TRUE(Connect());
  std::atomic<bool> out{false};
  std::thread reader([&] {
    EXPECT_FALSE(Read());
    out = true;
  });
  EXPECT_TRUE(WaitUntil([&] {
    pipe_.CancelIo();
    return out.load();
  }));
  reader.join();
}

TEST_F(PipeClientTest, WritesEverything) {
  ASSERT_TRUE(Connect());
  const Bytes bytes = Bytes().Fill(5, 1).Fill(5, 2);
  ASSERT_TRUE(pipe_.WriteAll(bytes.Get().data(), bytes.Size()));
  EXPECT_EQ(server_.Receive(10), bytes.Get());
}

TEST_F(PipeClientTest, AWriteToAFarEndThatHasGoneFails) {
  ASSERT_TRUE(Connect());
  server_.Disconnect();
  EXPECT_FALSE(pipe_.WriteAll(buffer_.data(), buffer_.size()));
}

TEST_F(PipeClientTest, OpeningAgainClosesWhatWasOpen) {
  ASSERT_TRUE(Connect());
  ServerPipe second(folder_.PathOf("Some"));
  second.Offer();
  ASSERT_TRUE(Open());
  EXPECT_TRUE(server_.WaitForClientGone());
  EXPECT_TRUE(second.Accept());
}

TEST_F(PipeClientTest, ClosesItsEndWhenItGoes) {
  server_.Offer();
  {
    PipeClient brief;
    ASSERT_TRUE(brief.Open(R"(\\.\pipe\Some)", PipeClient::Direction::kWrite));
    ASSERT_TRUE(server_.Accept());
  }
  EXPECT_TRUE(server_.WaitForClientGone());
}

}  // namespace
}  // namespace ombrel::test
