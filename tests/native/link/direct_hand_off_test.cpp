// Frames of eye layers on their way to the companion. The connection's first frame, into output 0, is gone already.
#include "core_fixture.h"

namespace ombrel::test {
namespace {

class DirectHandOffTest : public OmbrelCoreTest {
 protected:
  void SetUp() override { ASSERT_TRUE(Stream()); }
  // A frame of two layers.
  void HandOffTwoLayers(std::uint64_t syncTexture) {
    layers_ = {{1, 2, &bounds_}, {3, 4, &bounds_}};
    HandOff(syncTexture);
  }
};

TEST_F(DirectHandOffTest, GoesThroughItsStepsInOrder) {
  HandOffTwoLayers(77);
  EXPECT_EQ(Calls(), (Lines{"AcquireSyncTexture 77 16", "BeginLayers", "ComposeLayer 1 1 2", "ComposeLayer 1 3 4",
                            "ReleaseOutput 1", "AcquireOutput 0 16", "ClearOutput 0", "ReleaseSyncTexture"}));
  EXPECT_TRUE(layers_.empty());
}

TEST_F(DirectHandOffTest, AsksForNoSyncTextureWhenThereIsNone) {
  HandOffTwoLayers(0);
  Lines calls = Calls();
  std::erase(calls, "ReleaseSyncTexture");  // releasing none is nothing
  EXPECT_EQ(calls, (Lines{"BeginLayers", "ComposeLayer 1 1 2", "ComposeLayer 1 3 4", "ReleaseOutput 1",
                          "AcquireOutput 0 16", "ClearOutput 0"}));
}

TEST_F(DirectHandOffTest, AFrameWithoutLayersGoesOutLikeAnyOther) {
  HandOff(77);
  EXPECT_EQ(Calls(), (Lines{"AcquireSyncTexture 77 16", "BeginLayers", "ReleaseOutput 1", "AcquireOutput 0 16",
                            "ClearOutput 0", "ReleaseSyncTexture"}));
}

TEST_F(DirectHandOffTest, OutputsAlternate) {
  for (int i = 0; i < 4; ++i) HandOff();
  Lines acquired;
  for (const std::string& line : Calls()) {
    if (line.starts_with("AcquireOutput")) acquired.push_back(line);
  }
  EXPECT_EQ(acquired, (Lines{"AcquireOutput 0 16", "AcquireOutput 1 16", "AcquireOutput 0 16", "AcquireOutput 1 16"}));
}

TEST_F(DirectHandOffTest, ASyncTextureThatIsHeldDropsTheFrameAndItsLayers) {
  renderer_->canAcquireSync = false;
  HandOffTwoLayers(77);
  EXPECT_EQ(Calls(), Lines{"AcquireSyncTexture 77 16"});
  EXPECT_TRUE(layers_.empty());
  renderer_->canAcquireSync = true;
  renderer_->journal.Clear();
  HandOffTwoLayers(77);
  EXPECT_EQ(Calls()[2], "ComposeLayer 1 1 2");
}

TEST_F(DirectHandOffTest, AnOutputThatCouldNotBeHadIsDrawnAllTheSame) {
  renderer_->canAcquireOutput = false;
  for (int i = 0; i < 2; ++i) {
    renderer_->journal.Clear();
    HandOffTwoLayers(0);
    EXPECT_EQ(renderer_->journal.Count("BeginLayers"), 1U);
    EXPECT_TRUE(layers_.empty());
  }
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 1U);
}

TEST_F(DirectHandOffTest, LayersPileUpWhileTheLinkIsDownAndAreAllDrawnAfterwards) {
  companion_.Disconnect();
  ASSERT_TRUE(listener_.journal.WaitForLine("down"));
  for (std::uint64_t frame = 0; frame < 3; ++frame) {
    layers_.push_back({10 + frame, 20 + frame, &bounds_});
    HandOff(77);
    EXPECT_EQ(layers_.size(), frame + 1);
  }
  EXPECT_TRUE(Calls().empty());
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitUntil([this] {
    HandOff(77);
    return layers_.empty();
  }));
  EXPECT_EQ(
      renderer_->journal.From(3),
      (Lines{"Sharing", "AcquireSyncTexture 77 16", "BeginLayers", "ComposeLayer 0 10 20", "ComposeLayer 0 11 21",
             "ComposeLayer 0 12 22", "ReleaseOutput 0", "AcquireOutput 1 16", "ClearOutput 1", "ReleaseSyncTexture"}));
}

TEST_F(DirectHandOffTest, TimeOutsFollowTheFrameRateAndEndAtASecond) {
  const std::vector<std::pair<std::uint32_t, std::string>> cases{
      {90, "11"}, {72, "13"}, {1, "1000"}, {0, "1000"}, {2000, "0"}, {0x80000000U, "0"}, {0xFFFFFFFFU, "0"}};
  for (const auto& [rate, timeout] : cases) {
    ASSERT_TRUE(SetFrameRate(rate));
    renderer_->journal.Clear();
    HandOff(77);
    EXPECT_EQ(Calls()[0], "AcquireSyncTexture 77 " + timeout) << rate;
    EXPECT_TRUE(Calls()[3].starts_with("AcquireOutput") && Calls()[3].ends_with(" " + timeout)) << Calls()[3];
  }
}

TEST_F(DirectHandOffTest, DoesNothingOnceTheLinkHasStopped) {
  core_->StopLink();
  renderer_->journal.Clear();
  HandOffTwoLayers(77);
  EXPECT_TRUE(Calls().empty());
  EXPECT_EQ(layers_.size(), 2U);
}

}  // namespace
}  // namespace ombrel::test
