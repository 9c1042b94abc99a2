#include "contact_sheet.h"

#include <gtest/gtest.h>

#include "picture/drawing.h"

namespace bench {
namespace {

TEST(Shrink, TakesTheMeanOfWhatAPixelCovers) {
  Image image(4, 2);
  for (int x = 0; x < 4; ++x) image.Set(x, 1, {200, static_cast<std::uint8_t>(x < 2 ? 100 : 0), 0, 255});
  const Image small = Shrink(image, 2);
  ASSERT_EQ(small.width, 2);
  ASSERT_EQ(small.height, 1);
  EXPECT_EQ(small.At(0, 0), (Rgba{100, 50, 0, 128}));
  EXPECT_EQ(small.At(1, 0), (Rgba{100, 0, 0, 128}));
}

TEST(WriteCaption, LeavesWhiteDotsInsideThePicture) {
  Image image(60, 24);
  WriteCaption(image, 0, 2, "Ab");
  int white = 0;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) white += image.At(x, y)[0] == 255 ? 1 : 0;
  }
  EXPECT_GT(white, 40);
  EXPECT_LT(white, 600);
}

TEST(ContactSheet, DrawsFiveTilesARow) {
  ContactSheet sheet;
  for (std::uint64_t i = 0; i < 6; ++i) sheet.AddSample(i, {}, Image(960, 540));
  const Image drawn = sheet.Draw();
  EXPECT_EQ(drawn.width, 5 * (480 + 8) + 8);
  EXPECT_EQ(drawn.height, 2 * (270 + 24 + 8) + 8);
}

TEST(ContactSheet, ShowsNamedPicturesBeforeSamples) {
  ContactSheet sheet;
  sheet.AddSample(1, {}, Image(960, 540));
  sheet.AddNamed("trigger", 7, {0, -0.5F}, Image(960, 540));
  EXPECT_EQ(sheet.Describe(), "trigger  frame 7  yaw +0  pitch -29\nsample  frame 1  yaw +0  pitch +0\n");
}

TEST(ContactSheet, IsEmptyAtFirst) { EXPECT_TRUE(ContactSheet().Empty()); }

}  // namespace
}  // namespace bench
