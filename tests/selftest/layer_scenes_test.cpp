#include "layer_scenes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace ombrel::selftest {
namespace {

LayerScene OneColour(const bench::Rgba& rgba, LayerFormat format = LayerFormat::kRgba) {
  return {.name = "", .left = bench::OneColour(rgba), .right = bench::OneColour(rgba), .format = format};
}

std::uint8_t Encoded(double linear) { return static_cast<std::uint8_t>(std::lround(255 * std::pow(linear, 1 / 2.2))); }

TEST(LayerScenesTest, LinearLevelsAreRaisedToTheirPower) {
  const bench::Image image = ExpectedPicture(OneColour({128, 0, 255, 7}));
  EXPECT_EQ(image.At(50, 50), (bench::Rgba{Encoded(128 / 255.0), 0, 255, 255}));
}

TEST(LayerScenesTest, EncodedFormatsAreDecodedFirstAndBgraIsTurnedRound) {
  // 188 of 255 is one half of light; 2.2 and the curve of sRGB are not quite the same.
  EXPECT_EQ(ExpectedPicture(OneColour({188, 0, 255, 255}, LayerFormat::kRgbaSrgb)).At(9, 9)[0], Encoded(0.5029));
  EXPECT_EQ(ExpectedPicture(OneColour({0, 0, 255, 255}, LayerFormat::kBgraTypeless)).At(9, 9),
            (bench::Rgba{255, 0, 0, 255}));
}

TEST(LayerScenesTest, BoundsAndInversionTurnThePicture) {
  LayerScene scene = OneColour({});
  scene.left = scene.right = [](int x, int y) {
    return bench::Rgba{static_cast<std::uint8_t>(x < 64 ? 255 : 0), static_cast<std::uint8_t>(y < 64 ? 255 : 0), 0,
                       255};
  };
  EXPECT_EQ(ExpectedPicture(scene).At(20, 20), (bench::Rgba{255, 255, 0, 255}));
  scene.invertY = true;
  EXPECT_EQ(ExpectedPicture(scene).At(20, 20), (bench::Rgba{255, 0, 0, 255}));
  scene.bounds[0] = {1, 0, 0, 1};
  EXPECT_EQ(ExpectedPicture(scene).At(20, 20), (bench::Rgba{0, 0, 0, 255}));
}

TEST(LayerScenesTest, TheLastColumnOfAnOddWidthStaysUndrawn) {
  LayerScene scene = OneColour({255, 255, 255, 255});
  scene.outputWidth = 257;
  EXPECT_EQ(ExpectedPicture(scene).At(256, 5), bench::Rgba{});
}

TEST(LayerScenesTest, OneWrongPixelInsideIsSeenAndTheRimIsNot) {
  const LayerScene scene = LayerScenes()[0];
  const bench::Image expected = ExpectedPicture(scene);
  bench::Image drawn = expected;
  drawn.Set(127, 60, {});
  EXPECT_EQ(DifferenceInside(drawn, expected), 0);
  const bench::Rgba before = drawn.At(100, 60);
  drawn.Set(100, 60, {before[0], before[1], before[2], 5});
  EXPECT_EQ(DifferenceInside(drawn, expected), 250);
  EXPECT_EQ(DifferenceInside({}, expected), 256);
}

TEST(LayerScenesTest, TheNineScenesDiffer) {
  const auto scenes = LayerScenes();
  ASSERT_EQ(scenes.size(), 9U);
  std::vector<bench::Image> pictures;
  for (const LayerScene& scene : scenes) pictures.push_back(ExpectedPicture(scene));
  for (std::size_t one = 0; one < scenes.size(); ++one) {
    for (std::size_t other = 0; other < one; ++other) {
      // A typeless format is to give what its linear kin gives.
      if (scenes[one].name == "typeless_rgba" && scenes[other].name == "levels") continue;
      EXPECT_GT(DifferenceInside(pictures[one], pictures[other]), 6) << scenes[one].name << ", " << scenes[other].name;
    }
  }
}

}  // namespace
}  // namespace ombrel::selftest
