#include <gmock/gmock.h>

#include <chrono>

#include "base/wait.h"
#include "silent_pipes.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using bench::PipeServer;
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

TEST_F(ConnectionTest, CompanionMayRestartManyTimes) {
  InitAndActivateHeadset();
  for (int round = 0; round < 10; ++round) {
    ExpectToConnect(server);
    server.Close();
  }
}

TEST_F(ConnectionTest, OtherPipeMayBeMadeFirst) {
  InitAndActivateHeadset();
  PipeServer late({.toDriverFirst = true, .secondPipeDelayMs = 700});
  ExpectToConnect(late);
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

}  // namespace
}  // namespace ombrel::test
