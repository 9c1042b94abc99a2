#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DirectPixelsTest : public DirectTest {
 protected:
  void SetUp() override { Start(); }

  // Hands over what was submitted and lets the companion look at it.
  std::vector<std::string> Show(const std::vector<Area>& areas) {
    if (!HandOver()) return {"no frame was handed over"};
    TakeAnnouncement();
    return companion->Look(0, areas);
  }
};

TEST_F(DirectPixelsTest, EachEyeShowsItsColour) {
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  EXPECT_THAT(Show({EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(DirectPixelsTest, LinearColoursArriveGammaEncoded) {
  const bench::Rgba left{13, 55, 128, 255}, right{200, 99, 2, 255};
  SubmitLayer(MakeEye(left), MakeEye(right));
  EXPECT_THAT(Show({EyeMiddle(0, Encoded(left), 1), EyeMiddle(1, Encoded(right), 1)}), IsEmpty());
}

// Red and green above, blue and white below.
bench::Rgba Quarters(int x, int y) {
  const bool right = x >= 16, below = y >= 12;
  return below ? (right ? kWhite : kBlue) : (right ? kGreen : kRed);
}

TEST_F(DirectPixelsTest, TheBoundsOfEachEyeChooseItsPartOfTheTexture) {
  const auto eye = MakeEye(Quarters);
  SubmitLayer(eye, eye, {{{0.5F, 0.0F, 1.0F, 0.5F}, {0.0F, 0.5F, 0.5F, 1.0F}}});
  // Colours of the neighbouring quarters reach in by half a texel.
  EXPECT_THAT(Show({EyeMiddle(0, kGreen), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(DirectPixelsTest, ThePictureStandsUpright) {
  const auto eye = MakeEye(Quarters);
  SubmitLayer(eye, eye);
  EXPECT_THAT(Show({{"upper left", 520, 20, 200, 250, kRed},
                    {"upper right", 780, 20, 200, 250, kGreen},
                    {"lower right", 780, 330, 200, 250, kWhite},
                    {"lower left", 520, 330, 200, 250, kBlue}}),
              IsEmpty());
}

TEST_F(DirectPixelsTest, TwoLayersAreDrawnWithTheBoundsOfTheSecond) {
  const auto below = MakeEye(kRed), above = MakeEye(Quarters);
  SubmitLayer(below, below, {{{0.0F, 0.0F, 0.25F, 0.25F}, {0.0F, 0.0F, 0.25F, 0.25F}}});
  SubmitLayer(above, above, {{{0.5F, 0.5F, 1.0F, 1.0F}, {0.5F, 0.0F, 1.0F, 0.5F}}});
  EXPECT_THAT(Show({EyeMiddle(0, kWhite), EyeMiddle(1, kGreen)}), IsEmpty());
  const auto draws = calls.Of<Drawn>();
  ASSERT_THAT(draws, SizeIs(4));
  EXPECT_NE(draws[0].view, draws[2].view);
  for (const std::size_t left : {0u, 2u}) EXPECT_THAT(draws[left].bounds, ElementsAre(0.5F, 0.5F, 1.0F, 1.0F));
  for (const std::size_t right : {1u, 3u}) EXPECT_THAT(draws[right].bounds, ElementsAre(0.5F, 0.0F, 1.0F, 0.5F));
}

TEST_F(DirectPixelsTest, ALaterLayerHidesAnEarlierOneEvenWhereItIsTransparent) {
  const auto below = MakeEye(kWhite), above = MakeEye({0, 0, 255, 0});
  SubmitLayer(below, below);
  SubmitLayer(above, above);
  EXPECT_THAT(Show({EyeMiddle(0, kBlue), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(DirectPixelsTest, AnUnknownTextureIsDrawnFromNoViewAndTheOtherEyeIsWhole) {
  SubmitLayer(0x7777, MakeEye(kGreen));
  EXPECT_THAT(Show({EyeMiddle(1, kGreen)}), IsEmpty());
  const auto draws = calls.Of<Drawn>();
  ASSERT_THAT(draws, SizeIs(2));
  EXPECT_EQ(draws[0].view, nullptr);
  EXPECT_NE(draws[1].view, nullptr);
}

TEST_F(DirectPixelsTest, ADestroyedTextureIsDrawnFromNoView) {
  const auto eye = MakeEye(kGreen);
  SubmitLayer(eye, eye);
  Direct().DestroySwapTextureSet(eye);
  ASSERT_TRUE(HandOver());
  for (const Drawn& drawn : calls.Of<Drawn>()) EXPECT_EQ(drawn.view, nullptr);
}

TEST_F(DirectPixelsTest, TheOutputIsAsWideAsBothEyes) {
  ASSERT_TRUE(HandOver());
  const auto info = TakeAnnouncement();
  for (const auto& opened : companion->AttachAnnounced(info)) {
    EXPECT_EQ(opened.at("width"), 2 * kEyeWidth);
    EXPECT_EQ(opened.at("height"), kEyeHeight);
    EXPECT_EQ(opened.at("format"), 28);
  }
}

TEST_F(DirectPixelsTest, TheDriverDrawsUpright) {
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  ASSERT_TRUE(HandOver());
  EXPECT_FALSE(TakeAnnouncement().invertY);
  for (const Drawn& drawn : calls.Of<Drawn>()) EXPECT_EQ(drawn.parameters[0], 0);
}

}  // namespace
}  // namespace ombrel::test
