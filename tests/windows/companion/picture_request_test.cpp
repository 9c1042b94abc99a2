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

Expectation RedCorner() {
  Expectation expectation;
  expectation.name = "red";
  expectation.hasRegion = true;
  expectation.rgba = {255, 0, 0, 255};
  expectation.tolerance = 10;
  return expectation;
}

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
  Expectation any;
  any.name = "any";
  request.Ask(any);
  EXPECT_THAT(request.Offer(Plain({1, 2, 3, 4})), Optional(std::string("any")));
}

TEST(PictureRequest, SaysHowTheLastFrameDiffered) {
  PictureRequest request;
  request.Ask(RedCorner());
  static_cast<void>(request.Offer(Plain({0, 9, 0, 255})));
  EXPECT_THAT(request.Withdraw(), HasSubstr("(0, 9, 0, 255)"));
  EXPECT_FALSE(request.Open());
}

TEST(PictureRequest, SaysWhenNoFrameCame) {
  PictureRequest request;
  request.Ask(RedCorner());
  EXPECT_EQ(request.Withdraw(), "no frame came");
}

}  // namespace
}  // namespace bench::test
