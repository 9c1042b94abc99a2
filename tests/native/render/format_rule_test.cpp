#include "render/format_rule.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace ombrel::test {
namespace {

const std::set<std::uint32_t> kTypeless{1,  5,  9,  15, 19, 23, 27, 33, 39, 44, 48,
                                        53, 60, 70, 73, 76, 79, 82, 90, 92, 94, 97};
const std::map<std::uint32_t, std::uint32_t> kReplaced{{1, 2}, {5, 6}, {9, 11}, {27, 28}, {90, 91}, {92, 93}};

TEST(FormatRule, KnowsTheTypelessFormats) {
  for (std::uint32_t format = 0; format <= 132; ++format) {
    EXPECT_EQ(IsTypelessFormat(format), kTypeless.contains(format)) << format;
  }
}

TEST(FormatRule, ReplacesSixOfThemAndLeavesAllOthers) {
  for (std::uint32_t format = 0; format <= 132; ++format) {
    const auto replaced = kReplaced.find(format);
    EXPECT_EQ(ViewFormat(format), replaced != kReplaced.end() ? replaced->second : format) << format;
  }
}

TEST(FormatRule, LeavesFormatsThatDoNotExist) {
  EXPECT_FALSE(IsTypelessFormat(0xFFFFFFFF));
  EXPECT_EQ(ViewFormat(0xFFFFFFFF), 0xFFFFFFFFU);
}

}  // namespace
}  // namespace ombrel::test
