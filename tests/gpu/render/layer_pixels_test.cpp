#include <cmath>

#include "renderer_fixture.h"

namespace ombrel::test {
namespace {

using testing::IsEmpty;

double SrgbToLinear(int level) {
  const double value = level / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// Red and green above, blue and white below.
bench::Rgba Quarters(int x, int y) {
  const bool right = x >= 32, below = y >= 24;
  return below ? (right ? kWhite : kBlue) : (right ? kGreen : kRed);
}

using LayerPixelsTest = RendererPixelTest;

TEST_F(LayerPixelsTest, EachEyeShowsItsTextureInItsHalf) {
  ASSERT_TRUE(Start());
  const bench::Rgba left{200, 100, 50, 255}, right{10, 60, 220, 255};
  Compose(MakeEyeTexture(OneColour(left)), MakeEyeTexture(OneColour(right)));
  EXPECT_THAT(Look({Middle("left", 0, Encoded(left)), Middle("right", 1, Encoded(right))}), IsEmpty());
}

// The left eye's 64 x 48 pixels hold all levels: 16 columns of 4 by 16 rows of 3.
TEST_F(LayerPixelsTest, EveryLevelIsRaisedToItsPower) {
  ASSERT_TRUE(Start());
  const auto level = [](int x, int y) { return static_cast<std::uint8_t>(y / 3 * 16 + x / 4); };
  const auto handle = MakeEyeTexture([&](int x, int y) {
    const std::uint8_t value = level(x, y);
    return bench::Rgba{value, value, static_cast<std::uint8_t>(255 - value), 255};
  });
  Compose(handle, handle);
  std::vector<Area> areas;
  for (int value = 0; value < 256; ++value) {
    const bench::Rgba wanted = Encoded({static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value),
                                        static_cast<std::uint8_t>(255 - value), 255});
    areas.push_back({"level " + std::to_string(value), value % 16 * 4 + 1, value / 16 * 3 + 1, 2, 1, wanted, 0, 1});
  }
  EXPECT_THAT(Look(areas), IsEmpty());
}

TEST_F(LayerPixelsTest, ATypelessRgbaTextureIsTakenAsLinear) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(OneColour({128, 64, 192, 255}), kRgbaTypeless);
  Compose(handle, handle);
  EXPECT_THAT(Look({Middle("left", 0, Encoded({128, 64, 192, 255}), 1)}), IsEmpty());
}

TEST_F(LayerPixelsTest, ATypelessBgraTextureIsTakenAsGammaEncoded) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(OneColour({192, 64, 128, 255}), kBgraTypeless);  // blue comes first
  Compose(handle, handle);
  const bench::Rgba wanted{Encoded(SrgbToLinear(128)), Encoded(SrgbToLinear(64)), Encoded(SrgbToLinear(192)), 255};
  EXPECT_THAT(Look({Middle("left", 0, wanted, 1)}), IsEmpty());
}

TEST_F(LayerPixelsTest, AlphaBecomesOneWhateverItWas) {
  ASSERT_TRUE(Start());
  const auto half = MakeEyeTexture(OneColour({255, 0, 255, 128})), none = MakeEyeTexture(OneColour({0, 255, 0, 0}));
  Compose(half, none);
  EXPECT_THAT(Look({Middle("left", 0, {255, 0, 255, 255}), Middle("right", 1, kGreen)}), IsEmpty());
}

TEST_F(LayerPixelsTest, ALaterLayerOverwritesAnEarlierOne) {
  ASSERT_TRUE(Start());
  const auto below = MakeEyeTexture(OneColour(kWhite)), above = MakeEyeTexture(OneColour({0, 0, 255, 0}));
  ASSERT_TRUE(renderer->AcquireOutput(0, kTimeoutMs));
  renderer->BeginLayers();
  renderer->ComposeLayer(0, {below, below, &kWhole});
  renderer->ComposeLayer(0, {above, below, &kWhole});
  ASSERT_TRUE(renderer->ReleaseOutput(0));
  EXPECT_THAT(Look({Middle("left", 0, kBlue), Middle("right", 1, kWhite)}), IsEmpty());
}

TEST_F(LayerPixelsTest, BoundsChooseTheirPartOfTheTexture) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(Quarters);
  Compose(handle, handle, {{{0.5F, 0.0F, 1.0F, 0.5F}, {0.0F, 0.5F, 0.5F, 1.0F}}});
  EXPECT_THAT(Look({Middle("upper right", 0, kGreen), Middle("lower left", 1, kBlue)}), IsEmpty());
}

// The corners of an eye's picture, from its upper left one, clockwise.
std::vector<Area> Corners(int eye, const std::array<bench::Rgba, 4>& rgba) {
  const int x = eye * 64;
  return {{"upper left", x + 4, 4, 20, 12, rgba[0]},
          {"upper right", x + 40, 4, 20, 12, rgba[1]},
          {"lower right", x + 40, 32, 20, 12, rgba[2]},
          {"lower left", x + 4, 32, 20, 12, rgba[3]}};
}

TEST_F(LayerPixelsTest, TheTextureStandsUpright) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(Quarters);
  Compose(handle, handle);
  EXPECT_THAT(Look(Corners(1, {kRed, kGreen, kWhite, kBlue})), IsEmpty());
}

TEST_F(LayerPixelsTest, FlippedBoundsFlipThePicture) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(Quarters);
  Compose(handle, handle, {{{0, 1, 1, 0}, {1, 0, 0, 1}}});
  EXPECT_THAT(Look(Corners(0, {kBlue, kWhite, kGreen, kRed})), IsEmpty());
  EXPECT_THAT(Look(Corners(1, {kGreen, kRed, kBlue, kWhite})), IsEmpty());
}

TEST_F(LayerPixelsTest, InvertYTurnsThePictureUpsideDown) {
  ASSERT_TRUE(Start({kRgba, 128, 48, 1}));
  const auto handle = MakeEyeTexture(Quarters);
  Compose(handle, handle);
  for (const int eye : {0, 1}) EXPECT_THAT(Look(Corners(eye, {kBlue, kWhite, kGreen, kRed})), IsEmpty());
}

TEST_F(LayerPixelsTest, InvertYMirrorsWhatTheBoundsChose) {
  ASSERT_TRUE(Start({kRgba, 128, 48, 1}));
  const auto handle = MakeEyeTexture(Quarters);
  Compose(handle, handle, {{{0.0F, 0.0F, 0.5F, 0.5F}, {0.5F, 0.5F, 1.0F, 1.0F}}});
  EXPECT_THAT(Look({Middle("left", 0, kBlue), Middle("right", 1, kGreen)}), IsEmpty());
}

TEST_F(LayerPixelsTest, TheLastColumnOfAnOddWidthStaysUndrawn) {
  ASSERT_TRUE(Start({kRgba, 2561, 1440, 0}));
  const auto left = MakeEyeTexture(OneColour(kRed)), right = MakeEyeTexture(OneColour(kWhite));
  ASSERT_TRUE(renderer->AcquireOutput(0, kTimeoutMs));
  renderer->ClearOutput(0);
  ASSERT_TRUE(renderer->ReleaseOutput(0));
  Compose(left, right);
  EXPECT_THAT(Look({{"left", 0, 0, 1280, 1440, kRed},
                    {"right", 1280, 0, 1280, 1440, kWhite},
                    {"last column", 2560, 0, 1, 1440, kBlack}}),
              IsEmpty());
}

TEST_F(LayerPixelsTest, AClearedOutputIsBlack) {
  ASSERT_TRUE(Start());
  const auto handle = MakeEyeTexture(OneColour(kWhite));
  Compose(handle, handle, kWhole, 1);
  ASSERT_TRUE(renderer->AcquireOutput(1, kTimeoutMs));
  renderer->ClearOutput(1);
  ASSERT_TRUE(renderer->ReleaseOutput(1));
  EXPECT_THAT(Look({{"all", 0, 0, 128, 48, kBlack}}, 1), IsEmpty());
}

TEST_F(LayerPixelsTest, TheTwoOutputsAreTwoPictures) {
  ASSERT_TRUE(Start());
  const auto red = MakeEyeTexture(OneColour(kRed)), green = MakeEyeTexture(OneColour(kGreen));
  Compose(red, red, kWhole, 0);
  Compose(green, green, kWhole, 1);
  EXPECT_THAT(Look({Middle("left", 0, kRed)}, 0), IsEmpty());
  EXPECT_THAT(Look({Middle("left", 0, kGreen)}, 1), IsEmpty());
}

}  // namespace
}  // namespace ombrel::test
