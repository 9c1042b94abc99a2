#include <gmock/gmock.h>

#include <chrono>
#include <memory>

#include "runtime/wait.h"
#include "silent_pipes.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using bench::PipeServer;
using bench::PipeServerOptions;
using bench::scenarios::SilentPipes;

class ConnectionTest : public LinkTest {
 protected:
  // A companion that starts, is found by the driver and sends a pose that arrives.
  void ExpectToConnect(PipeServer& companion) {
    ASSERT_TRUE(bench::WaitUntil([&] { return companion.Open(); }, std::chrono::milliseconds(kTimeoutMs)));
    ExpectPoseFrom(companion);
  }
  void ExpectPoseFrom(PipeServer& companion) {
    ASSERT_TRUE(companion.WaitForConnection(kTimeoutMs));
    const std::size_t poses = PosesSent();
    ASSERT_TRUE(companion.Send(bench::EncodeQuaternionAndPosition({}, {})));
    EXPECT_TRUE(WaitFor([&] { return PosesSent() > poses; }));
  }
};

TEST_F(ConnectionTest, CompanionMayComeAfterTheDriver) {
  InitAndActivateHeadset();
  NewLogLines();
  ExpectToConnect(server);
  EXPECT_TRUE(NewLogLines().empty()) << "the link is silent";
}

TEST_F(ConnectionTest, IsSilentWhileThereAreNoPipes) {
  InitAndActivateHeadset();
  const std::size_t calls = runtime.Journal().Entries().size();
  EXPECT_FALSE(runtime.Journal().WaitUntil([&] { return runtime.Journal().Entries().size() > calls; },
                                           std::chrono::milliseconds(500)));
}

TEST_F(ConnectionTest, FindsTheCompanionWithinAQuarterOfASecondOrSo) {
  InitAndActivateHeadset();
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(server.Open());
  ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500)) << "100 ms, 150 ms, and slack";
}

TEST_F(ConnectionTest, CompanionMayRestartManyTimes) {
  InitAndActivateHeadset();
  for (int round = 0; round < 10; ++round) {
    ExpectToConnect(server);
    server.Close();
  }
}

TEST_F(ConnectionTest, CompanionMayRestartWithoutBeingConnectedLong) {
  InitAndActivateHeadset();
  for (int round = 0; round < 10; ++round) {
    ASSERT_TRUE(bench::WaitUntil([&] { return server.Open(); }, std::chrono::milliseconds(kTimeoutMs)));
    static_cast<void>(server.WaitForConnection(static_cast<std::uint32_t>(40 * round)));
    server.Close();
  }
  ExpectToConnect(server);
}

TEST_F(ConnectionTest, SecondPipeMayBeMadeLate) {
  InitAndActivateHeadset();
  PipeServer late({.secondPipeDelayMs = 700});
  ExpectToConnect(late);
}

TEST_F(ConnectionTest, OtherPipeMayBeMadeFirst) {
  InitAndActivateHeadset();
  PipeServer late({.toDriverFirst = true, .secondPipeDelayMs = 700});
  ExpectToConnect(late);
}

TEST_F(ConnectionTest, CompanionMayEndBeforeItsSecondPipeAndStartAgain) {
  InitAndActivateHeadset();
  for (int round = 0; round < 5; ++round) {
    PipeServer half({.secondPipeDelayMs = 60000});
    ASSERT_TRUE(bench::WaitUntil([&] { return half.Open(); }, std::chrono::milliseconds(kTimeoutMs)));
    static_cast<void>(half.WaitForConnection(static_cast<std::uint32_t>(60 * round)));
  }
  ExpectToConnect(server);
}

TEST_F(ConnectionTest, CompanionMayDisconnectItsFirstPipeBeforeItMakesItsSecond) {
  InitAndActivateHeadset();
  SilentPipes first(SilentPipes::Which::kOnlyFromDriver);
  ASSERT_TRUE(first.WaitForDriver(kTimeoutMs));
  first.DisconnectFirstPipe();
  SilentPipes second(SilentPipes::Which::kOnlyToDriver);
  EXPECT_TRUE(first.WaitForDriver(kTimeoutMs)) << "the driver keeps the end that it was thrown out of";
  ASSERT_TRUE(second.WaitForDriver(kTimeoutMs));
  const std::size_t poses = PosesSent();
  ASSERT_TRUE(second.Write(bench::EncodeQuaternionAndPosition({}, {})));
  EXPECT_TRUE(WaitFor([&] { return PosesSent() > poses; }));
}

TEST_F(ConnectionTest, PipesWithoutBuffersWork) {
  InitAndActivateHeadset();
  PipeServer unbuffered({.bufferBytes = 0});
  ExpectToConnect(unbuffered);
}

TEST_F(ConnectionTest, MessagePipesWork) {
  InitAndActivateHeadset();
  PipeServer messages({.messageType = true});
  ExpectToConnect(messages);
}

TEST_F(ConnectionTest, LastMessageBeforeTheCompanionEndsIsTaken) {
  Connect();
  const std::size_t poses = PosesSent();
  ASSERT_TRUE(server.Send(bench::EncodeQuaternionAndPosition({}, {})));
  server.Close();
  EXPECT_TRUE(WaitFor([&] { return PosesSent() == poses + 1; }));
}

TEST_F(ConnectionTest, PoseStaysWhenTheCompanionIsGone) {
  Connect();
  SendForPose(bench::EncodeQuaternionAndPosition({}, {1, 2, 3}));
  server.Close();
  ExpectToConnect(server);
  EXPECT_EQ(PoseOf(Headset()).vecPosition[1], 0.0) << "the new companion's";
}

}  // namespace
}  // namespace ombrel::test
