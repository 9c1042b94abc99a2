#include <gmock/gmock.h>

#include <chrono>

#include "base/wait.h"
#include "silent_pipes.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using bench::scenarios::SilentPipes;
using companion::PipeServer;

class ConnectionTest : public LinkTest {
 protected:
  // A companion that starts, is found by the driver and sends a pose that arrives.
  void ExpectToConnect(PipeServer& pipes) {
    ASSERT_TRUE(bench::WaitUntil([&] { return pipes.Open(); }, std::chrono::milliseconds(kTimeoutMs)));
    ASSERT_TRUE(pipes.WaitForConnection(kTimeoutMs));
    ExpectPoseFrom([&] { return pipes.Send(pose_); });
  }
  template <typename Send>
  void ExpectPoseFrom(Send send) {
    const std::size_t poses = PosesSent();
    ASSERT_TRUE(send());
    EXPECT_TRUE(WaitFor([&] { return PosesSent() > poses; }));
  }

  const companion::Bytes pose_ = companion::EncodeQuaternionAndPosition({}, {});
};

TEST_F(ConnectionTest, OtherPipeMayBeMadeFirst) {
  InitAndActivateHeadset();
  SilentPipes toDriver(SilentPipes::Which::kOnlyToDriver);
  Sleep(700);
  SilentPipes fromDriver(SilentPipes::Which::kOnlyFromDriver);
  ASSERT_TRUE(fromDriver.WaitForDriver(kTimeoutMs) && toDriver.WaitForDriver(kTimeoutMs));
  ExpectPoseFrom([&] { return toDriver.Write(pose_); });
}

TEST_F(ConnectionTest, CompanionMayDisconnectItsFirstPipeBeforeItMakesItsSecond) {
  InitAndActivateHeadset();
  SilentPipes first(SilentPipes::Which::kOnlyFromDriver);
  ASSERT_TRUE(first.WaitForDriver(kTimeoutMs));
  first.DisconnectFirstPipe();
  SilentPipes second(SilentPipes::Which::kOnlyToDriver);
  EXPECT_TRUE(first.WaitForDriver(kTimeoutMs)) << "the driver keeps the end that it was thrown out of";
  ASSERT_TRUE(second.WaitForDriver(kTimeoutMs));
  ExpectPoseFrom([&] { return second.Write(pose_); });
}

TEST_F(ConnectionTest, PipesWithoutBuffersWork) {
  InitAndActivateHeadset();
  PipeServer unbuffered({.bufferBytes = 0});
  ExpectToConnect(unbuffered);
}

TEST_F(ConnectionTest, MessagePipesWork) {
  InitAndActivateHeadset();
  SilentPipes messages(SilentPipes::Which::kBoth, 4096, true);
  ASSERT_TRUE(messages.WaitForDriver(kTimeoutMs));
  ExpectPoseFrom([&] { return messages.Write(pose_); });
}

TEST_F(ConnectionTest, LastMessageBeforeTheCompanionEndsIsTaken) {
  Connect();
  const std::size_t poses = PosesSent();
  ASSERT_TRUE(server.Send(pose_));
  server.Close();
  EXPECT_TRUE(WaitFor([&] { return PosesSent() == poses + 1; }));
}

}  // namespace
}  // namespace ombrel::test
