#include "contact_sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "picture.h"

namespace bench {
namespace {

using testing::HasSubstr;
using testing::Not;

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

class ContactSheetTest : public testing::Test {
 protected:
  void Show(std::uint64_t frame, float yaw, float pitch) {
    const YawPitch look{yaw, pitch};
    if (sheet_.WantsDirection(look)) sheet_.AddDirection(frame, look, Image(960, 540));
  }
  ContactSheet sheet_;
};

TEST_F(ContactSheetTest, KeepsTheFarthestLookOfEachDirection) {
  Show(0, 0.5F, 0);
  Show(1, 0, 0);
  Show(2, 1.0F, 0);
  Show(3, 0.7F, 0);
  Show(4, -0.9F, 0);
  Show(5, 0, 0.6F);
  Show(6, 0, -0.7F);
  const std::string text = sheet_.Describe();
  EXPECT_THAT(text, HasSubstr("straight  frame 1  yaw +0  pitch +0\n"));
  EXPECT_THAT(text, HasSubstr("left  frame 2  yaw +57  pitch +0\n"));
  EXPECT_THAT(text, HasSubstr("right  frame 4  yaw -52  pitch +0\n"));
  EXPECT_THAT(text, HasSubstr("up  frame 5  yaw +0  pitch +34\n"));
  EXPECT_THAT(text, HasSubstr("down  frame 6  yaw +0  pitch -40\n"));
}

TEST_F(ContactSheetTest, DoesNotWantWhatIsHardlyBetter) {
  Show(0, 0, 0);
  for (const float sign : {1.0F, -1.0F}) {
    Show(1, sign, 0);
    Show(2, 0, sign);
  }
  EXPECT_FALSE(sheet_.WantsDirection({1.01F, 0}));
  EXPECT_TRUE(sheet_.WantsDirection({1.1F, 0}));
}

TEST_F(ContactSheetTest, DrawsFiveTilesARow) {
  for (std::uint64_t i = 0; i < 6; ++i) sheet_.AddSample(i, {}, Image(960, 540));
  const Image drawn = sheet_.Draw();
  EXPECT_EQ(drawn.width, 5 * (480 + 8) + 8);
  EXPECT_EQ(drawn.height, 2 * (270 + 24 + 8) + 8);
}

TEST_F(ContactSheetTest, ShowsNamedPicturesBeforeSamples) {
  sheet_.AddSample(1, {}, Image(960, 540));
  sheet_.AddNamed("trigger", 7, {0, -0.5F}, Image(960, 540));
  EXPECT_EQ(sheet_.Describe(), "trigger  frame 7  yaw +0  pitch -29\nsample  frame 1  yaw +0  pitch +0\n");
}

TEST_F(ContactSheetTest, IsEmptyAtFirst) { EXPECT_TRUE(sheet_.Empty()); }

}  // namespace
}  // namespace bench
