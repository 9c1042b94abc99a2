#include <stdexcept>

#include "expectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Image Filled(int width, int height, const Rgba& colour) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.Set(x, y, colour);
  }
  return image;
}

TEST(Expectations, ARegionWithinToleranceIsMet) {
  auto expectations = Expectations::Parse(
      R"([{"frame": 2, "x": 1, "y": 1, "width": 3, "height": 2, "rgba": [10, 20, 30, 255], "tolerance": 1}])");
  const Image image = Filled(8, 8, {11, 19, 30, 255});
  EXPECT_TRUE(expectations.WantsPixels(1, 2));
  EXPECT_FALSE(expectations.WantsPixels(1, 1));
  EXPECT_FALSE(expectations.WantsPixels(2, 2));
  expectations.Check({1, 2, 0, {}}, &image);
  EXPECT_EQ(expectations.Passed(), 1U);
  EXPECT_TRUE(expectations.Complete());
}

TEST(Expectations, TheFirstWrongPixelIsNamed) {
  auto expectations = Expectations::Parse(
      R"([{"name": "left eye", "frame": 0, "x": 1, "y": 1, "width": 3, "height": 2, "rgba": [9, 9, 9, 255]}])");
  Image image = Filled(8, 8, {9, 9, 9, 255});
  image.Set(3, 2, {9, 9, 12, 255});
  expectations.Check({1, 0, 0, {}}, &image);
  EXPECT_EQ(expectations.Passed(), 0U);
  EXPECT_THAT(expectations.Failures(), ElementsAre("connection 1, frame 0 (left eye): pixel (3, 2) is (9, 9, 12, 255), "
                                                   "expected (9, 9, 9, 255) within 0"));
}

TEST(Expectations, PixelsBesideTheRegionDoNotMatter) {
  auto expectations = Expectations::Parse(R"([{"frame": 0, "x": 1, "y": 1, "rgba": [9, 9, 9, 255]}])");
  Image image = Filled(3, 3, {0, 0, 0, 0});
  image.Set(1, 1, {9, 9, 9, 255});
  expectations.Check({1, 0, 0, {}}, &image);
  EXPECT_THAT(expectations.Failures(), IsEmpty());
}

TEST(Expectations, ARegionOutsideTheFrameIsNotMet) {
  auto expectations = Expectations::Parse(R"([{"frame": 0, "x": 8, "y": 0, "rgba": [0, 0, 0, 0]}])");
  const Image image(8, 8);
  expectations.Check({1, 0, 0, {}}, &image);
  EXPECT_THAT(expectations.Failures(), ElementsAre(HasSubstr("outside the frame")));
}

TEST(Expectations, AFrameThatNeverCameIsNotMet) {
  auto expectations = Expectations::Parse(R"([{"frame": 5, "texture": 1}])");
  EXPECT_FALSE(expectations.Complete());
  expectations.Finish();
  EXPECT_THAT(expectations.Failures(), ElementsAre("connection 1, frame 5: the frame never came"));
}

TEST(Expectations, TextureAndSlotAreCheckedWithoutPixels) {
  auto expectations = Expectations::Parse(
      R"([{"frame": 0, "texture": 1}, {"frame": 0, "slot": [1,0,0,0, 0,1,0,1.7, 0,0,1,0, 0,0,0,1]}])");
  EXPECT_FALSE(expectations.WantsPixels(1, 0));
  expectations.Check({1, 0, 0, {1, 0, 0, 0, 0, 1, 0, 1.5F, 0, 0, 1, 0, 0, 0, 0, 1}}, nullptr);
  EXPECT_THAT(expectations.Failures(),
              ElementsAre(HasSubstr("texture is 0, expected 1"), HasSubstr("slot float 7 is 1.5, expected 1.7")));
}

TEST(Expectations, PixelsThatCannotBeReadAreNotMet) {
  auto expectations = Expectations::Parse(R"([{"frame": 0, "x": 0, "y": 0, "rgba": [0, 0, 0, 0]}])");
  expectations.Check({1, 0, 0, {}}, nullptr);
  EXPECT_THAT(expectations.Failures(), ElementsAre(HasSubstr("could not be read")));
}

TEST(Expectations, MistakesInTheFileAreErrors) {
  EXPECT_THROW(Expectations::Parse(R"([{"frame": 0, "rgb": [0, 0, 0]}])"), std::runtime_error);
  EXPECT_THROW(Expectations::Parse(R"([{"frame": 0}])"), std::runtime_error);
  EXPECT_ANY_THROW(Expectations::Parse(R"([{"x": 0, "y": 0, "rgba": [0, 0, 0, 0]}])"));
}

}  // namespace
}  // namespace bench
