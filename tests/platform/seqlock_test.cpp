#include "platform/seqlock.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

namespace ombrel::test {
namespace {

// A value that shows when it is torn: every word is the same number. Its size is not a whole number of
// the words that are copied.
struct Uniform {
  std::array<std::uint32_t, 35> words{};

  explicit Uniform(std::uint32_t value = 0) { words.fill(value); }
  [[nodiscard]] bool IsWhole() const { return words == Uniform(words[0]).words; }
};

TEST(SeqLock, StartsWithTheDefaultValue) {
  const SeqLock<Uniform> shared;
  EXPECT_EQ(shared.Load().words, Uniform(0).words);
}

TEST(SeqLock, KeepsWhatItWasMadeWith) {
  const SeqLock<Uniform> shared(Uniform(7));
  EXPECT_EQ(shared.Load().words, Uniform(7).words);
}

TEST(SeqLock, GivesTheLatestValue) {
  SeqLock<Uniform> shared;
  shared.Store(Uniform(1));
  shared.Store(Uniform(2));
  EXPECT_EQ(shared.Load().words, Uniform(2).words);
}

TEST(SeqLock, KeepsEveryByteOfASmallValue) {
  struct Odd {
    std::array<std::uint8_t, 3> bytes;
  };
  const SeqLock<Odd> shared(Odd{{1, 2, 3}});
  EXPECT_EQ(shared.Load().bytes, (std::array<std::uint8_t, 3>{1, 2, 3}));
}

// Several writers race several readers: no read is torn. Runs until enough stores have overlapped a read, since threads
// that take turns on a busy machine would never race, but with a bound.
class SeqLockStress : public testing::Test {
 protected:
  static constexpr int kMeetings = 20000;
  static constexpr std::chrono::seconds kBound{5};

  void Read() {
    std::uint32_t last = 0;
    while (!done_) {
      const Uniform value = shared_.Load();
      if (!value.IsWhole()) ++torn_;
      if (std::exchange(last, value.words[0]) != value.words[0]) ++meetings_;
    }
  }
  void Write(std::uint32_t value) {
    while (!done_) shared_.Store(Uniform(++value));
  }
  void Run(unsigned writers) {
    const auto deadline = std::chrono::steady_clock::now() + kBound;
    std::vector<std::thread> threads;
    threads.emplace_back([this] { Read(); });
    for (unsigned i = 0; i < writers; ++i) threads.emplace_back([=, this] { Write(i * 0x40000000U); });
    while (meetings_ < kMeetings && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    done_ = true;
    for (std::thread& thread : threads) thread.join();
  }

  SeqLock<Uniform> shared_;
  std::atomic<bool> done_{false};
  std::atomic<int> torn_{0};
  std::atomic<int> meetings_{0};
};

TEST_F(SeqLockStress, NobodySeesHalfAValueOfOneWriter) {
  Run(1);
  EXPECT_EQ(torn_, 0);
  EXPECT_GT(meetings_, 0);
}

TEST_F(SeqLockStress, NobodySeesHalfAValueOfTwoWriters) {
  Run(2);
  EXPECT_EQ(torn_, 0);
  EXPECT_GT(meetings_, 0);
}

TEST_F(SeqLockStress, ValuesOfOneWriterNeverGoBack) {
  constexpr std::uint32_t kStores = 20000;
  std::thread writer([this] {
    for (std::uint32_t i = 0; i <= kStores; ++i) shared_.Store(Uniform(i));
  });
  std::uint32_t last = 0;
  bool wentBack = false;
  while (last != kStores) {
    const std::uint32_t now = shared_.Load().words[0];
    wentBack = wentBack || now < last;
    last = now;
  }
  writer.join();
  EXPECT_FALSE(wentBack);
}

}  // namespace
}  // namespace ombrel::test
