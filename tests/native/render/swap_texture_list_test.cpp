#include "render/swap_texture_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace ombrel::test {
namespace {

class SwapTextureListTest : public testing::Test {
 protected:
  using Handles = std::vector<std::uint64_t>;

  void Add(std::uint64_t handle, std::uint32_t process, std::uint32_t set) {
    list_.Add({.handle = handle, .texture = texture_}, process, set);
  }
  Handles RemoveSet(std::uint32_t set) {
    Handles removed;
    list_.RemoveSet(set, [&](std::uint64_t handle) { removed.push_back(handle); });
    return removed;
  }
  Handles RemoveProcess(std::uint32_t process) {
    Handles removed;
    list_.RemoveProcess(process, [&](std::uint64_t handle) { removed.push_back(handle); });
    return removed;
  }

  std::shared_ptr<int> texture_ = std::make_shared<int>(0);
  SwapTextureList list_;
};

TEST_F(SwapTextureListTest, FindsTheSetOfAHandle) {
  Add(11, 1, 0);
  Add(21, 1, 1);
  EXPECT_EQ(list_.FindSet(21), 1U);
  EXPECT_EQ(list_.FindSet(11), 0U);
}

TEST_F(SwapTextureListTest, FindsNoSetForAnUnknownHandle) {
  EXPECT_EQ(list_.FindSet(11), SwapTextureList::kNoSet);
  Add(11, 1, 0);
  EXPECT_EQ(list_.FindSet(12), SwapTextureList::kNoSet);
}

TEST_F(SwapTextureListTest, FindsTheSetOfTheFirstRecordWithThatHandle) {
  Add(11, 1, 3);
  Add(11, 1, 2);
  EXPECT_EQ(list_.FindSet(11), 3U);
}

TEST_F(SwapTextureListTest, RemovesASetFromTheLastToTheFirstAndNothingElse) {
  for (const std::uint64_t handle : {11U, 12U, 13U}) Add(handle, 1, 0);
  for (const std::uint64_t handle : {21U, 22U, 23U}) Add(handle, 1, 1);
  EXPECT_EQ(RemoveSet(0), (Handles{13, 12, 11}));
  EXPECT_EQ(list_.FindSet(12), SwapTextureList::kNoSet);
  EXPECT_EQ(list_.FindSet(22), 1U);
}

TEST_F(SwapTextureListTest, RemovesAProcesssRecordsOfAllSets) {
  Add(11, 1, 0);
  Add(21, 2, 1);
  Add(31, 1, 2);
  EXPECT_EQ(RemoveProcess(1), (Handles{31, 11}));
  EXPECT_EQ(RemoveProcess(1), Handles{});
  EXPECT_EQ(list_.FindSet(21), 1U);
}

TEST_F(SwapTextureListTest, RemovesNothingForASetThatIsNotThere) {
  Add(11, 1, 0);
  EXPECT_EQ(RemoveSet(SwapTextureList::kNoSet), Handles{});
  EXPECT_EQ(RemoveSet(1), Handles{});
}

TEST_F(SwapTextureListTest, LetsEachTextureGoBeforeItTellsOfIt) {
  Add(11, 1, 0);
  Add(12, 1, 0);
  std::vector<long> holders;
  list_.RemoveSet(0, [&](std::uint64_t) { holders.push_back(texture_.use_count()); });
  EXPECT_EQ(holders, (std::vector<long>{2, 1}));
}

}  // namespace
}  // namespace ombrel::test
