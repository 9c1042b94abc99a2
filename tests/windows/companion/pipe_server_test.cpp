#include "companion/pipe_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "base/clock.h"
#include "plain_client.h"

namespace companion {
namespace {

constexpr std::uint32_t kPatienceMs = 5000;

class PipeServerTest : public testing::Test {
 protected:
  PipeServerOptions Named() const {
    PipeServerOptions options;
    options.fromDriverName = names_.in;
    options.toDriverName = names_.out;
    return options;
  }
  PipeServerOptions Unbuffered() const {
    auto options = Named();
    options.bufferBytes = 0;
    return options;
  }

  void Connect(PipeServer& server) {
    ASSERT_TRUE(client_.Open(names_.in, names_.out));
    ASSERT_TRUE(server.WaitForConnection(kPatienceMs));
  }

  void ExpectToArrive(PipeServer& server, const Bytes& message, std::uint32_t connection = 1) {
    ASSERT_TRUE(client_.WriteMessage(message));
    const auto received = server.Next(kPatienceMs);
    ASSERT_TRUE(received);
    EXPECT_EQ(EncodeMessage(received->message.type, received->message.payload), message);
    EXPECT_EQ(received->connection, connection);
  }

  void ExpectToBeRead(PipeServer& server, const Bytes& message) {
    ASSERT_TRUE(server.Send(message));
    const auto read = client_.Read();
    ASSERT_TRUE(read);
    EXPECT_EQ(EncodeMessage(read->type, read->payload), message);
  }

  PipeNames names_{testing::UnitTest::GetInstance()->current_test_info()->name()};
  PlainClient client_;
};

TEST_F(PipeServerTest, CarriesMessagesBothWays) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  Connect(server);
  ExpectToArrive(server, EncodeHapticPulse({1, 2, 3}));
  ExpectToBeRead(server, EncodeFramerateUpdate(90));
}

TEST_F(PipeServerTest, StampsMessagesWithTheTimeOfTheirArrival) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  Connect(server);
  const std::int64_t before = bench::NowTicks();
  ASSERT_TRUE(client_.WriteMessage(EncodeHapticPulse({})));
  const auto received = server.Next(kPatienceMs);
  ASSERT_TRUE(received);
  EXPECT_GE(received->ticks, before);
  EXPECT_LE(received->ticks, bench::NowTicks());
}

TEST_F(PipeServerTest, LetsTheClientInAgainAfterItLeft) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  for (std::uint32_t connection = 1; connection <= 5; ++connection) {
    Connect(server);
    EXPECT_EQ(server.Connections(), connection);
    ExpectToArrive(server, EncodeHapticPulse({connection, 0, 0}), connection);
    ExpectToBeRead(server, EncodeFramerateUpdate(connection));
    client_.Close();
    ASSERT_TRUE(server.WaitForDisconnection(kPatienceMs));
  }
}

TEST_F(PipeServerTest, CanBeClosedAndOpenedAgain) {
  PipeServer server(Named());
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(server.Open());
    Connect(server);
    server.Close();
    EXPECT_FALSE(server.Connected());
    EXPECT_FALSE(client_.Read()) << "the client must notice";
    client_.Close();
  }
}

TEST_F(PipeServerTest, LeavesWhatItSentReadableWhenItCloses) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  Connect(server);
  ASSERT_TRUE(server.Send(EncodeShutdownRequest()));
  server.Close();
  const auto read = client_.Read();
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->Is(MessageType::ShutdownRequest));
}

TEST_F(PipeServerTest, LetsANewClientInAfterOneThatOpenedOnlyTheFirstPipe) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  bench::OwnedHandle in(CreateFileA(names_.in.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(in);
  Sleep(50);
  in.Reset();
  Connect(server);
  ExpectToBeRead(server, EncodeRecenterRequest());
}

TEST_F(PipeServerTest, WithoutABufferASendWaitsForItsReader) {
  PipeServer server(Unbuffered());
  ASSERT_TRUE(server.Open());
  Connect(server);
  std::atomic<bool> sent = false;
  std::thread sender([&] { sent = server.Send(EncodeFramerateUpdate(60)); });
  Sleep(100);
  EXPECT_FALSE(sent);
  EXPECT_TRUE(client_.Read());
  sender.join();
  EXPECT_TRUE(sent);
}

TEST_F(PipeServerTest, ClosingFreesABlockedSend) {
  PipeServer server(Unbuffered());
  ASSERT_TRUE(server.Open());
  Connect(server);
  std::atomic<bool> result = true;
  std::thread sender([&] { result = server.Send(EncodeFramerateUpdate(60)); });
  Sleep(100);
  server.Close();
  sender.join();
  EXPECT_FALSE(result);
}

TEST_F(PipeServerTest, SendsNothingWithoutAConnection) {
  PipeServer server(Named());
  EXPECT_FALSE(server.Send(EncodeRecenterRequest()));
  ASSERT_TRUE(server.Open());
  EXPECT_FALSE(server.Send(EncodeRecenterRequest()));
}

TEST_F(PipeServerTest, CanBeClosedWhileOnlyOnePipeHasAClient) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  bench::OwnedHandle in(CreateFileA(names_.in.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(in);
  Sleep(50);
  EXPECT_FALSE(server.Connected());
  server.Close();
}

TEST_F(PipeServerTest, SaysThatItsNamesAreTaken) {
  PipeServer first(Named()), second(Named());
  ASSERT_TRUE(first.Open());
  EXPECT_FALSE(second.Open());
}

TEST_F(PipeServerTest, PutsMessagesTogetherThatComeInPieces) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  Connect(server);
  const Bytes message = EncodeHapticPulse({7, 8, 9});
  for (const std::uint8_t byte : message) ASSERT_TRUE(client_.WriteBytes({&byte, 1}));
  const auto received = server.Next(kPatienceMs);
  ASSERT_TRUE(received);
  EXPECT_EQ(DecodeHapticPulse(received->message.payload)->controllerId, 7U);
}

TEST_F(PipeServerTest, EndsAConnectionThatAnnouncesTooMuch) {
  PipeServer server(Named());
  ASSERT_TRUE(server.Open());
  Connect(server);
  ASSERT_TRUE(client_.WriteBytes(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0}));
  EXPECT_TRUE(server.WaitForDisconnection(kPatienceMs));
  EXPECT_FALSE(client_.Read());
}

}  // namespace
}  // namespace companion
