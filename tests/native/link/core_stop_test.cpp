// The core stops at any moment and waits for who is inside.
#include <atomic>
#include <chrono>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

class CoreStopTest : public OmbrelCoreTest {
 protected:
  void StopWithinBound() {
    EXPECT_TRUE(StopsWithinBound([this] { core_->StopLink(); }));
  }
};

TEST_F(CoreStopTest, WithoutHavingBeenSetUp) { StopWithinBound(); }

TEST_F(CoreStopTest, WithoutACompanion) {
  SetUpCore();
  StopWithinBound();
}

TEST_F(CoreStopTest, TwiceWhileTheCompanionKeepsItsPipesOpen) {
  ASSERT_TRUE(Stream());
  StopWithinBound();
  StopWithinBound();
  EXPECT_TRUE(companion_.out.WaitForClientGone());
}

TEST_F(CoreStopTest, BeforeTheRendererIsReady) {
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  StopWithinBound();
}

TEST_F(CoreStopTest, WaitsForAFrameUnderWay) {
  ASSERT_TRUE(Stream());
  Barrier holding;
  renderer_->onCall = [&](const std::string& line) {
    if (line == "BeginLayers") holding.Pass();
  };
  Background frame([this] { HandOff(77); });
  ASSERT_TRUE(holding.WaitForVisitor());
  Background stop([this] { core_->StopLink(); });
  EXPECT_TRUE(stop.StaysBlocked());
  holding.Open();
  EXPECT_TRUE(stop.Finishes());
  // It went through to its end.
  EXPECT_EQ(renderer_->journal.Count("ReleaseSyncTexture"), 1U);
  EXPECT_TRUE(frame.Finishes());
}

TEST_F(CoreStopTest, WaitsForTheOutputsBeingMade) {
  Barrier making;
  ASSERT_TRUE(ConnectUpTo(making));
  Background stop([this] { core_->StopLink(); });
  EXPECT_TRUE(stop.StaysBlocked());
  making.Open();
  EXPECT_TRUE(stop.Finishes());
}

// Frames of both kinds, pacing, poses, frame rates and reconnects, and then the end.
TEST_F(CoreStopTest, InTheMiddleOfEverything) {
  ASSERT_TRUE(Stream());
  std::atomic<bool> done{false};
  Background layers([&] {
    while (!done) HandOff(77);
  });
  Background textures([&] {
    while (!done) core_->Frames().HandOffTexture(5);
  });
  Background pacing([&] {
    while (!done) core_->Pacer().WaitForNextFrame();
  });
  Background companion([&] {
    for (int life = 0; life < 3; ++life) {
      for (int i = 0; i < 200; ++i) {
        static_cast<void>(companion_.SendPose(0, 0, 0, 1));
        if (i % 50 == 0) static_cast<void>(companion_.Send(9, Bytes().U32(i % 100 == 0 ? 90 : 1000)));
      }
      companion_.Offer();
      companion_.Disconnect();
      if (!companion_.Accept()) return;
    }
  });
  EXPECT_TRUE(companion.Finishes());
  StopWithinBound();
  done = true;
  EXPECT_TRUE(layers.Finishes() && textures.Finishes() && pacing.Finishes());
}

}  // namespace
}  // namespace ombrel::test
