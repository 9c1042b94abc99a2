#include "platform/copy_on_write.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace ombrel::test {
namespace {

using Numbers = std::vector<int>;

TEST(CopyOnWrite, StartsWithTheDefaultValue) {
  const CopyOnWrite<Numbers> shared;
  EXPECT_TRUE(shared.Look([](const Numbers& numbers) { return numbers.empty(); }));
}

TEST(CopyOnWrite, GivesWhatAChangeMade) {
  CopyOnWrite<Numbers> shared;
  shared.Update([](Numbers& numbers) { numbers.push_back(1); });
  shared.Update([](Numbers& numbers) { numbers.push_back(2); });
  EXPECT_EQ(shared.Look([](const Numbers& numbers) { return numbers; }), (Numbers{1, 2}));
}

TEST(CopyOnWrite, AChangeThatThrowsLeavesTheValue) {
  CopyOnWrite<Numbers> shared;
  shared.Update([](Numbers& numbers) { numbers.push_back(1); });
  EXPECT_ANY_THROW(shared.Update([](Numbers& numbers) {
    numbers.push_back(2);
    throw 1;
  }));
  EXPECT_EQ(shared.Look([](const Numbers& numbers) { return numbers; }), Numbers{1});
}

// Two threads change, two look: no change is lost, and a value that is looked at does not go away.
TEST(CopyOnWriteStress, LosesNoChangeAndShowsWholeValues) {
  constexpr int kChanges = 300;
  CopyOnWrite<Numbers> shared;
  std::atomic<bool> done{false};
  std::atomic<int> faults{0};
  const auto look = [&] {
    while (!done) {
      shared.Look([&](const Numbers& numbers) {
        for (const int number : numbers) faults += number == 7 ? 0 : 1;
      });
      std::this_thread::yield();
    }
  };
  const auto change = [&] {
    for (int i = 0; i < kChanges; ++i) shared.Update([](Numbers& numbers) { numbers.push_back(7); });
  };
  std::thread looker(look), otherLooker(look), changer(change);
  change();
  changer.join();
  done = true;
  looker.join();
  otherLooker.join();
  EXPECT_EQ(faults, 0);
  EXPECT_EQ(shared.Look([](const Numbers& numbers) { return numbers.size(); }), 2U * kChanges);
}

}  // namespace
}  // namespace ombrel::test
