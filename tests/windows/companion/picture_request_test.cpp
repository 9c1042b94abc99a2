#include "picture_request.h"

#include <gmock/gmock.h>

namespace bench::test {
namespace {

using testing::HasSubstr;
using testing::Optional;

Image Plain(const Rgba& colour) {
  Image image(4, 4);
  for (std::size_t i = 0; i < image.pixels.size(); ++i) image.pixels[i] = colour[i % colour.size()];
  return image;
}

WantedPicture RedCorner() { return {.name = "red", .region = Box{}, .rgba = {255, 0, 0, 255}, .tolerance = 10}; }

TEST(PictureRequest, IsClosedUntilSomethingIsAskedFor) {
  PictureRequest request;
  EXPECT_FALSE(request.Open());
  EXPECT_EQ(request.Offer(Plain({})), std::nullopt);
}

TEST(PictureRequest, TakesTheFirstFrameThatShowsWhatIsWanted) {
  PictureRequest request;
  request.Ask(RedCorner());
  EXPECT_EQ(request.Offer(Plain({240, 0, 0, 255})), std::nullopt);
  EXPECT_TRUE(request.Open());
  EXPECT_THAT(request.Offer(Plain({250, 5, 0, 255})), Optional(std::string("red")));
  EXPECT_FALSE(request.Open());
}

TEST(PictureRequest, TakesTheNextFrameWithoutAColour) {
  PictureRequest request;
  request.Ask({.name = "any"});
  EXPECT_THAT(request.Offer(Plain({1, 2, 3, 4})), Optional(std::string("any")));
}

TEST(PictureRequest, SaysWhichPixelOfTheRegionTheLastFrameHadWrong) {
  PictureRequest request;
  request.Ask({.name = "nine", .region = Box{1, 1, 3, 2}, .rgba = {9, 9, 9, 255}});
  Image image = Plain({9, 9, 9, 255});
  image.Set(0, 0, {1, 2, 3, 4});
  image.Set(3, 2, {9, 9, 12, 255});
  EXPECT_EQ(request.Offer(image), std::nullopt);
  EXPECT_EQ(request.Withdraw(), "pixel (3, 2) is (9, 9, 12, 255), expected (9, 9, 9, 255) within 0");
  EXPECT_FALSE(request.Open());
}

TEST(PictureRequest, TakesNoFrameThatTheRegionLiesOutsideOf) {
  PictureRequest request;
  request.Ask({.name = "far", .region = Box{4, 0}, .rgba = {}});
  EXPECT_EQ(request.Offer(Plain({})), std::nullopt);
  EXPECT_THAT(request.Withdraw(), HasSubstr("outside the frame"));
}

TEST(PictureRequest, SaysWhenNoFrameCame) {
  PictureRequest request;
  request.Ask(RedCorner());
  EXPECT_EQ(request.Withdraw(), "no frame came");
}

}  // namespace
}  // namespace bench::test
