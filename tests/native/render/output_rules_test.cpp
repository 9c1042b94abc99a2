#include "render/output_rules.h"

#include <gtest/gtest.h>

#include <string>

namespace ombrel::test {
namespace {

// As long as the system's descriptions, with nothing behind the text.
bool IsPreferred(std::u16string description) {
  description.resize(128);
  return IsPreferredAdapter(description.data());
}

TEST(PreferredAdapter, IsTheOneOfThatVeryName) { EXPECT_TRUE(IsPreferred(u"NVIDIA")); }

TEST(PreferredAdapter, IsNoneWhoseNameGoesOn) {
  EXPECT_FALSE(IsPreferred(u"NVIDIA GeForce"));
  EXPECT_FALSE(IsPreferred(u"NVIDIAX"));
}

TEST(PreferredAdapter, IsNoneOfAnotherName) {
  EXPECT_FALSE(IsPreferred(u""));
  EXPECT_FALSE(IsPreferred(u"NVIDI"));
  EXPECT_FALSE(IsPreferred(u"nvidia"));
  EXPECT_FALSE(IsPreferred(u" NVIDIA"));
  EXPECT_FALSE(IsPreferred(u"Other adapter"));
}

TEST(PreferredAdapter, ComparesWholeUnits) {
  // The low bytes alone would match.
  EXPECT_FALSE(IsPreferred(u"\u014EVIDIA"));
}

TEST(PreferredAdapter, LooksAtNothingBehindTheTerminator) {
  const std::u16string description(u"NVIDIA\0behind", 13);
  EXPECT_TRUE(IsPreferredAdapter(description.data()));
  EXPECT_TRUE(IsPreferredAdapter(std::u16string(u"NVIDIA\0", 7).data()));
}

void ExpectViewports(std::uint32_t width, std::uint32_t height, float half) {
  const auto [left, right] = EyeViewports(width, height);
  EXPECT_EQ(left.x, 0.0F);
  EXPECT_EQ(left.width, half);
  EXPECT_EQ(left.height, static_cast<float>(height));
  EXPECT_EQ(right.x, half);
  EXPECT_EQ(right.width, half);
  EXPECT_EQ(right.height, static_cast<float>(height));
}

TEST(EyeViewports, AreTheTwoHalves) { ExpectViewports(2560, 1440, 1280.0F); }

TEST(EyeViewports, LeaveTheLastColumnOfAnOddWidth) { ExpectViewports(2561, 1440, 1280.0F); }

TEST(EyeViewports, OfNoWidthAreEmpty) {
  ExpectViewports(0, 0, 0.0F);
  ExpectViewports(1, 1, 0.0F);
}

}  // namespace
}  // namespace ombrel::test
