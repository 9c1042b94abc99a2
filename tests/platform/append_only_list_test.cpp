#include "platform/append_only_list.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace ombrel::test {
namespace {

std::vector<int> Entries(const AppendOnlyList<int>& list) {
  std::vector<int> entries;
  list.ForEach([&](int value) { entries.push_back(value); });
  return entries;
}

TEST(AppendOnlyList, StartsEmpty) {
  const AppendOnlyList<int> list;
  EXPECT_TRUE(Entries(list).empty());
}

TEST(AppendOnlyList, IsWalkedInTheOrderOfAdding) {
  AppendOnlyList<int> list;
  for (const int value : {3, 1, 2}) list.Add(value);
  EXPECT_EQ(Entries(list), (std::vector{3, 1, 2}));
}

TEST(AppendOnlyList, KeepsAnEntryThatIsThereTwice) {
  AppendOnlyList<int> list;
  list.Add(4);
  list.Add(4);
  EXPECT_EQ(Entries(list), (std::vector{4, 4}));
}

TEST(AppendOnlyList, IsEmptyAfterClearAndCanGrowAgain) {
  AppendOnlyList<int> list;
  list.Add(1);
  list.Clear();
  EXPECT_TRUE(Entries(list).empty());
  list.Add(2);
  EXPECT_EQ(Entries(list), std::vector{2});
}

TEST(AppendOnlyList, AnEntryAddedDuringAWalkIsSeenByIt) {
  AppendOnlyList<int> list;
  list.Add(1);
  std::vector<int> seen;
  list.ForEach([&](int value) {
    if (value == 1) list.Add(2);
    seen.push_back(value);
  });
  EXPECT_EQ(seen, (std::vector{1, 2}));
}

// Two threads add, two walk. An entry is a pair, so that a torn one shows.
struct Pair {
  int value;
  int same;
};

TEST(AppendOnlyListStress, WalkersSeeWholeEntriesInOrder) {
  constexpr int kEntries = 2000;
  AppendOnlyList<Pair> list;
  std::atomic<bool> done{false};
  std::atomic<int> faults{0};
  const auto walk = [&] {
    while (!done) {
      std::array<int, 2> last{-1, -1};
      list.ForEach([&](const Pair& entry) {
        int& previous = last[static_cast<std::size_t>(entry.value % 2)];
        if (entry.value != entry.same || entry.value <= previous) ++faults;
        previous = entry.value;
      });
    }
  };
  const auto add = [&](int first) {
    for (int i = first; i < kEntries; i += 2) list.Add({i, i});
  };
  std::vector<std::thread> walkers;
  for (int i = 0; i < 2; ++i) walkers.emplace_back(walk);
  std::thread even(add, 0), odd(add, 1);
  even.join();
  odd.join();
  done = true;
  for (std::thread& thread : walkers) thread.join();
  int count = 0;
  list.ForEach([&](const Pair&) { ++count; });
  EXPECT_EQ(faults, 0);
  EXPECT_EQ(count, kEntries);
}

}  // namespace
}  // namespace ombrel::test
