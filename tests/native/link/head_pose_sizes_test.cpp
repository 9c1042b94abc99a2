// How many bytes each pose format needs, and what becomes of fewer and of more.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "head_pose_fixture.h"

namespace ombrel::test {
namespace {

struct FormatSize {
  std::uint32_t format;
  std::size_t bytes;
};

class PoseFormatTest : public HeadPoseTrackerTest, public testing::WithParamInterface<FormatSize> {};

// Filled so that a format that were taken in would leave its mark in orientation, position or state.
Bytes Filled(std::size_t size) {
  const Bytes numbers = Bytes().F32({0.5F, 0.5F, 0.5F, 0.5F, 0.25F, 2.5F, 3.5F, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  return Bytes().Append(std::span(numbers.Get()).first(size));
}

TEST_P(PoseFormatTest, TakesExactlyTheBytesItNeeds) {
  EXPECT_NE(Apply(Filled(GetParam().bytes), GetParam().format), Outcome::kTooShort);
}

TEST_P(PoseFormatTest, TakesMoreBytesAndReadsTheFirst) {
  HeadPoseTracker exact(1000);
  const std::size_t size = GetParam().bytes;
  const auto expected = exact.Apply(Bytes().Append(Filled(size)).U32(GetParam().format), now_ + 1);
  EXPECT_EQ(Apply(Bytes().Append(Filled(size)).Fill(7, 0xC3), GetParam().format), expected);
  ExpectSameButTimestamp(Record(), exact.Record());
}

TEST_P(PoseFormatTest, DropsWhatIsShorterAndChangesNothing) {
  ASSERT_EQ(Apply(Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}), 4), Outcome::kPublished);
  const LinkPoseRecord before = Record();
  for (std::size_t size = 0; size < GetParam().bytes; ++size) {
    ASSERT_EQ(Apply(Filled(size), GetParam().format), Outcome::kTooShort) << size;
  }
  ExpectSameButTimestamp(Record(), before);
  EXPECT_EQ(Record().timestamp, before.timestamp);
  EXPECT_EQ(Apply({}, 1), Outcome::kPublished);
  ExpectSameButTimestamp(Record(), before);
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, PoseFormatTest,
                         testing::Values(FormatSize{0, 48}, FormatSize{1, 0}, FormatSize{2, 36}, FormatSize{3, 36},
                                         FormatSize{4, 28}, FormatSize{5, 12}, FormatSize{6, 48}, FormatSize{7, 48},
                                         FormatSize{49, 48}, FormatSize{50, 0}, FormatSize{51, 48}, FormatSize{254, 1},
                                         FormatSize{255, 48}, FormatSize{0x7FFFFFFE, 48}, FormatSize{0x7FFFFFFF, 0},
                                         FormatSize{0x80000000, 48}, FormatSize{0xFFFFFFFF, 48}));

TEST_F(HeadPoseTrackerTest, APayloadWithoutRoomForAFormatIsTooShort) {
  for (std::size_t size = 0; size < 4; ++size) {
    EXPECT_EQ(tracker_.Apply(Bytes().Fill(size), 2000), Outcome::kTooShort);
  }
  EXPECT_EQ(Record().timestamp, 1000U);
}

// Any bits as floats, of any format and length; the sanitizers watch.
TEST_F(HeadPoseTrackerTest, TakesAnyBitsAndAGoodPoseAfterwards) {
  std::mt19937 random(3);
  const std::array<std::uint32_t, 12> formats{0, 1, 2, 3, 4, 5, 6, 7, 50, 254, 0x7FFFFFFF, 0xFFFFFFFF};
  for (int i = 0; i < 20000; ++i) {
    Bytes pose;
    for (auto word = random() % 14; word > 0; --word) pose.U32(static_cast<std::uint32_t>(random()));
    static_cast<void>(Apply(pose, formats[random() % formats.size()]));
  }
  tracker_.Recenter();
  EXPECT_EQ(Apply(Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}), 4), Outcome::kPublished);
  EXPECT_TRUE(IsFinite(Record().orientation));
  EXPECT_EQ(Record().position, (Vector3{1, 2, 3}));
  EXPECT_EQ(Apply(Bytes().F32({1, 2, 3, 0, 0, 9, 0, 0, 0}), 2), Outcome::kPublished);
  EXPECT_TRUE(IsFinite(Record().orientation));
}

// A broken filter sample must not reach the filter either.
TEST_F(HeadPoseTrackerTest, ASensorSampleThatIsTooShortLeavesTheFilterAlone) {
  const Bytes sample = Bytes().F32({1, 2, 3, 0.5F, 0.25F, 9, 20, 1, -40});
  OrientationFilter filter;
  filter.Update({{1, 2, 3}, {0.5F, 0.25F, 9}, {20, 1, -40}});
  EXPECT_EQ(Apply(std::span(sample.Get()).first(35), 2), Outcome::kTooShort);
  EXPECT_EQ(Apply(sample, 2), Outcome::kPublished);
  EXPECT_EQ(Record().rawOrientation, filter.Orientation());
}

}  // namespace
}  // namespace ombrel::test
