#include "link/frame_sharing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

#include "support/bytes.h"

namespace ombrel::test {
namespace {

constexpr const char* kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

TEST(FrameSharingName, Has58CharactersOfItsAlphabet) {
  const std::string name = MakeFrameSharingName();
  EXPECT_EQ(name.size(), 58U);
  EXPECT_EQ(name.find_first_not_of(kAlphabet), std::string::npos);
}

TEST(FrameSharingName, IsDrawnFromTheLibrarysSequence) {
  std::srand(7);
  std::string expected;
  for (int i = 0; i < 58; ++i) expected += kAlphabet[std::rand() % 62];
  std::srand(7);
  EXPECT_EQ(MakeFrameSharingName(), expected);
}

TEST(FrameSharingName, DoesNotSeedTheSequence) {
  std::srand(7);
  const std::string first = MakeFrameSharingName();
  EXPECT_NE(MakeFrameSharingName(), first);
}

TEST(FrameSharingName, UsesTheWholeAlphabet) {
  std::set<char> used;
  for (int i = 0; i < 100; ++i) {
    for (const char c : MakeFrameSharingName()) used.insert(c);
  }
  EXPECT_EQ(used.size(), 62U);
}

TEST(SlotOffset, IsHalfABlockForEachSlot) {
  EXPECT_EQ(SlotOffset(128, 0), 0);
  EXPECT_EQ(SlotOffset(128, 1), 64);
}

TEST(SlotOffset, HalvesTowardsZeroInSignedArithmetic) {
  EXPECT_EQ(SlotOffset(129, 1), 64);
  EXPECT_EQ(SlotOffset(-129, 1), -64);
  EXPECT_EQ(SlotOffset(1, 1), 0);
}

TEST(FrameSharing, HasANameOnceItsBlockIsMadeAndTakesPosesForBothSlots) {
  FrameSharing sharing;
  EXPECT_TRUE(sharing.Name().empty());
  sharing.WriteSlot(0, {});
  sharing.Create();
  EXPECT_EQ(sharing.Name().size(), 58U);
  // The address sanitizer watches the block's bounds.
  sharing.WriteSlot(0, {});
  sharing.WriteSlot(1, {});
}

TEST(FrameSharingInfoBytes, AreThoseOfTheAnnouncement) {
  const std::string name(58, 'n');
  const OutputSharing outputs{.handles = {0xAAAAAAAA11223344U, 0xBBBBBBBB55667788U}, .invertY = 1};
  const FrameSharingInfo info = MakeFrameSharingInfo(0x01020304, outputs, name);
  const Bytes expected = Bytes().U32(0x01020304).U32(0x11223344).U32(0x55667788).Fill(58, 'n').Fill(2).U8(1).Fill(3);
  const std::span<const std::byte> bytes = RecordBytes(info);
  EXPECT_EQ(std::vector(bytes.begin(), bytes.end()), expected.Get());
}

TEST(FrameSharingInfoBytes, AreZeroWhereTheNameEndsEarly) {
  const FrameSharingInfo info = MakeFrameSharingInfo(1, {.handles = {2, 3}, .invertY = 0}, "abc");
  const Bytes expected = Bytes().U32(1).U32(2).U32(3).U8('a').U8('b').U8('c').Fill(57).Fill(4);
  const std::span<const std::byte> bytes = RecordBytes(info);
  EXPECT_EQ(std::vector(bytes.begin(), bytes.end()), expected.Get());
}

TEST(FrameSharingInfoBytes, EndANameThatIsTooLongWithANul) {
  const FrameSharingInfo info = MakeFrameSharingInfo(1, {}, std::string(100, 'x'));
  EXPECT_EQ(std::string(info.sharedName.data()), std::string(59, 'x'));
}

}  // namespace
}  // namespace ombrel::test
