// Layers on their way into frames.
#include <new>

#include "direct_mode_fixture.h"

namespace ombrel::test {
namespace {

using DirectModeFramesTest = DirectModeComponentTest;

TEST_F(DirectModeFramesTest, AllLayersOfAFrameAreDrawnWithTheLastBounds) {
  std::vector<EyeBounds> drawn;
  renderer_->onLayer = [&](const LayerRecord& layer) { drawn.push_back(*layer.bounds); };
  Submit(1, 2, 0.0F);
  Submit(3, 4, 0.0625F);
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 3 4"), 1U);
  ASSERT_EQ(drawn.size(), 2U);
  for (const EyeBounds& bounds : drawn) {
    EXPECT_EQ(bounds[0].uMin, 0.0625F);
    EXPECT_EQ(bounds[0].vMin, 0.125F);
    EXPECT_EQ(bounds[0].uMax, 0.5F);
    EXPECT_EQ(bounds[0].vMax, 0.75F);
    EXPECT_EQ(bounds[1].uMin, 0.3125F);
  }
}

TEST_F(DirectModeFramesTest, LayersPileUpWhileTheLinkIsDownAndAreDrawnWithTheLastBounds) {
  for (std::uint64_t frame = 1; frame <= 3; ++frame) {
    Submit(frame, 10 + frame, 0.0625F * static_cast<float>(frame));
    component_.Present(9);
    component_.PostPresent();
  }
  EXPECT_TRUE(renderer_->journal.All().empty());
  const auto& drawn = NoteLayers();
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  EXPECT_EQ(drawn, (Layers{{1, 0.1875F}, {2, 0.1875F}, {3, 0.1875F}}));
}

TEST_F(DirectModeFramesTest, OfManyLayersThatPileUpTheNewestAreKept) {
  constexpr std::uint64_t kMost = DirectModeComponent::kMostLayers;
  for (std::uint64_t layer = 1; layer <= kMost + 2; ++layer) Submit(layer, layer, 0);
  std::vector<std::uint64_t> drawn;
  renderer_->onLayer = [&](const LayerRecord& layer) { drawn.push_back(layer.leftTexture); };
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  ASSERT_EQ(drawn.size(), kMost);
  EXPECT_EQ(drawn.front(), 3U);
  EXPECT_EQ(drawn.back(), kMost + 2);
}

TEST_F(DirectModeFramesTest, PassesTheSyncTextureOnAndForgetsTheLayersAfterwards) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  renderer_->journal.Clear();
  Submit(1, 2, 0);
  component_.Present(77);
  component_.Present(78);
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 77 16"), 1U);
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 78 16"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 1 1 2"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 0U);
}

TEST_F(DirectModeFramesTest, ALayerThatIsSubmittedWhileAFrameIsDrawnIsTheNextFrames) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  const auto& drawn = NoteLayers();
  renderer_->onCall = [this](const std::string& line) {
    if (line != "AcquireSyncTexture 77 16") return;
    Background other([this] { Submit(3, 4, 0.25F); });
    EXPECT_TRUE(other.Finishes()) << "it waits for a texture that it has nothing to do with";
  };
  Submit(1, 2, 0.125F);
  component_.Present(77);
  EXPECT_EQ(drawn, (Layers{{1, 0.125F}}));
  component_.Present(78);
  EXPECT_EQ(drawn.back(), std::pair(std::uint64_t{3}, 0.25F));
}

// A frame that fails stays as it was, like one for which there is no link.
TEST_F(DirectModeFramesTest, ALayerThatIsSubmittedWhileNobodyTakesAFrameIsDrawnBehindIt) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  renderer_->onCall = [this](const std::string& line) {
    if (line != "AcquireSyncTexture 77 16") return;
    Submit(3, 4, 0.25F, 0.5F);
    throw std::bad_alloc();
  };
  Submit(1, 2, 0.125F, -0.5F);
  component_.Present(77);
  const auto& drawn = NoteLayers();
  component_.Present(78);
  EXPECT_EQ(drawn, (Layers{{1, 0.25F}, {3, 0.25F}}));
  EXPECT_EQ(PoseInSlot(1), -0.5F) << "a frame's pose is that of its first layer";
}

TEST_F(DirectModeFramesTest, FramesThatArePresentedAtOnceAreDrawnOneAfterTheOther) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  Barrier drawing;
  renderer_->onCall = [&](const std::string& line) {
    if (line == "AcquireSyncTexture 77 16") drawing.Pass();
  };
  Background first([this] { component_.Present(77); });
  ASSERT_TRUE(drawing.WaitForVisitor());
  Background second([this] { component_.Present(78); });
  EXPECT_TRUE(second.StaysBlocked());
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 78 16"), 0U);
  drawing.Open();
  EXPECT_TRUE(first.Finishes() && second.Finishes());
}

}  // namespace
}  // namespace ombrel::test
