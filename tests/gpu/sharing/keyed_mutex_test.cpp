#include "side.h"

#include "sharing/counters.h"
#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <optional>
#include <vector>

namespace bench::test {
namespace {

using namespace std::chrono_literals;

std::future<HRESULT> AcquireOnAnotherThread(IDXGIKeyedMutex* mutex, UINT64 key, DWORD timeoutMs) {
  return std::async(std::launch::async, [=] { return mutex->AcquireSync(key, timeoutMs); });
}

// One shared texture with a keyed mutex, on two devices.
class KeyedMutexTest : public TwoSidesTest {
 protected:
  void SetUp() override {
    made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
    ASSERT_NE(made, nullptr);
    opened = openerSide->Open(SharedHandle(made.Get()));
    ASSERT_NE(opened, nullptr);
    maker = FindKeyedMutex(made.Get());
    opener = FindKeyedMutex(opened.Get());
    ASSERT_NE(maker, nullptr);
    ASSERT_NE(opener, nullptr);
  }

  // The opener's wait for that key goes on for `time`, and ends when the maker releases it.
  void ExpectToWaitForKey(UINT64 key, DWORD timeoutMs, std::chrono::milliseconds time) {
    ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
    auto waiter = AcquireOnAnotherThread(opener.Get(), key, timeoutMs);
    EXPECT_EQ(waiter.wait_for(time), std::future_status::timeout);
    ASSERT_EQ(maker->ReleaseSync(key), S_OK);
    EXPECT_EQ(waiter.get(), S_OK);
  }
  void DropMaker() {
    maker.Reset();
    made.Reset();
  }

  ComPtr<ID3D11Texture2D> made;
  ComPtr<ID3D11Texture2D> opened;
  ComPtr<IDXGIKeyedMutex> maker;
  ComPtr<IDXGIKeyedMutex> opener;
};

void PassOn(IDXGIKeyedMutex* mutex, UINT64 key, UINT64 nextKey) {
  EXPECT_EQ(mutex->AcquireSync(key, kLongMs), S_OK);
  EXPECT_EQ(mutex->ReleaseSync(nextKey), S_OK);
}

TEST_F(KeyedMutexTest, StartsReleasedWithKeyZero) { EXPECT_EQ(opener->AcquireSync(0, 0), S_OK); }

TEST_F(KeyedMutexTest, DoesNotStartReleasedWithAnotherKey) { EXPECT_EQ(maker->AcquireSync(1, 0), kTimeout); }

TEST_F(KeyedMutexTest, IsHeldByOneTextureAtATime) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(opener->AcquireSync(0, 0), kTimeout);
  EXPECT_EQ(maker->ReleaseSync(0), S_OK);
  EXPECT_EQ(opener->AcquireSync(0, 0), S_OK);
}

TEST_F(KeyedMutexTest, AnswersATimeoutWithAPositiveCode) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(opener->AcquireSync(0, 5), 0x102);
}

TEST_F(KeyedMutexTest, WaitsForItsTimeout) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(opener->AcquireSync(0, 120), kTimeout);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 120ms);
}

TEST_F(KeyedMutexTest, GoesOnlyToWhoAsksForTheKeyOfTheRelease) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(maker->ReleaseSync(7), S_OK);
  EXPECT_EQ(opener->AcquireSync(0, 0), kTimeout);
  EXPECT_EQ(opener->AcquireSync(7, 0), S_OK);
}

TEST_F(KeyedMutexTest, WakesAWaiterWhenItsKeyIsReleased) { ExpectToWaitForKey(3, kLongMs, 100ms); }

TEST_F(KeyedMutexTest, HandsOverAtOnceAndNotWhenAWaiterHappensToLook) {
  constexpr auto kLookAgain = 250ms;
  ASSERT_EQ(MarkReadOnly(made.Get()), S_OK);
  ASSERT_EQ(MarkReadOnly(opened.Get()), S_OK);
  std::vector<std::chrono::steady_clock::duration> rounds(15);
  auto other = std::async(std::launch::async, [&] {
    for (std::size_t round = 0; round < rounds.size(); ++round) PassOn(opener.Get(), 1, 0);
  });
  for (auto& duration : rounds) {
    const auto start = std::chrono::steady_clock::now();
    PassOn(maker.Get(), 0, 1);
    duration = std::chrono::steady_clock::now() - start;
  }
  other.get();
  std::ranges::sort(rounds);
  EXPECT_LT(rounds[rounds.size() / 2], kLookAgain * 3 / 4);
}

TEST_F(KeyedMutexTest, LeavesAWaiterForAnotherKeyWaiting) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  auto waiter = AcquireOnAnotherThread(opener.Get(), 3, 300);
  ASSERT_EQ(maker->ReleaseSync(4), S_OK);
  EXPECT_EQ(waiter.get(), kTimeout);
}

TEST_F(KeyedMutexTest, WaitsWithoutEndForAnInfiniteTimeout) { ExpectToWaitForKey(0, INFINITE, 300ms); }

TEST_F(KeyedMutexTest, LetsTwoWaitingTexturesHaveItOneAfterTheOther) {
  const Side thirdSide;
  const auto thirdTexture = thirdSide.Open(SharedHandle(made.Get()));
  const auto third = FindKeyedMutex(thirdTexture.Get());
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  const auto passThrough = [](IDXGIKeyedMutex* mutex) {
    const HRESULT acquired = mutex->AcquireSync(0, kLongMs);
    return acquired == S_OK ? mutex->ReleaseSync(0) : acquired;
  };
  auto first = std::async(std::launch::async, passThrough, opener.Get());
  auto second = std::async(std::launch::async, passThrough, third.Get());
  ASSERT_EQ(maker->ReleaseSync(0), S_OK);
  EXPECT_EQ(first.get(), S_OK);
  EXPECT_EQ(second.get(), S_OK);
}

TEST_F(KeyedMutexTest, MayBeReleasedOnAnotherThreadThanItWasAcquiredOn) {
  ASSERT_EQ(AcquireOnAnotherThread(maker.Get(), 0, 0).get(), S_OK);
  EXPECT_EQ(maker->ReleaseSync(0), S_OK);
  EXPECT_EQ(opener->AcquireSync(0, 0), S_OK);
}

TEST_F(KeyedMutexTest, IsTheTexturesAndNotTheInterfacePointers) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  maker.Reset();
  EXPECT_EQ(opener->AcquireSync(0, 0), kTimeout);
  EXPECT_EQ(FindKeyedMutex(made.Get())->ReleaseSync(0), S_OK);
}

TEST_F(KeyedMutexTest, RefusesASecondAcquireByItsHolder) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(maker->AcquireSync(0, 0), DXGI_ERROR_INVALID_CALL);
  EXPECT_EQ(maker->ReleaseSync(0), S_OK);
}

TEST_F(KeyedMutexTest, RefusesTheReleaseOfWhatNobodyHolds) { EXPECT_EQ(maker->ReleaseSync(0), E_FAIL); }

TEST_F(KeyedMutexTest, RefusesTheReleaseOfWhatAnotherHolds) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(opener->ReleaseSync(0), E_FAIL);
  EXPECT_EQ(opener->AcquireSync(0, 0), kTimeout);
}

TEST_F(KeyedMutexTest, IsAbandonedWhenItsHoldersLastReferenceGoes) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  DropMaker();
  EXPECT_EQ(opener->AcquireSync(0, 0), kAbandoned);
}

TEST_F(KeyedMutexTest, TellsAWaiterThatItsHolderWent) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  auto waiter = AcquireOnAnotherThread(opener.Get(), 0, kLongMs);
  EXPECT_EQ(waiter.wait_for(100ms), std::future_status::timeout);
  DropMaker();
  EXPECT_EQ(waiter.get(), kAbandoned);
}

TEST_F(KeyedMutexTest, GivesNothingToWhoFindsItAbandoned) {
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  DropMaker();
  ASSERT_EQ(opener->AcquireSync(0, 0), kAbandoned);
  EXPECT_TRUE(FAILED(opener->ReleaseSync(0)));
  EXPECT_EQ(opener->AcquireSync(0, 0), kAbandoned);
}

TEST_F(KeyedMutexTest, IsNotAbandonedByATextureThatDidNotHoldIt) {
  DropMaker();
  EXPECT_EQ(opener->AcquireSync(0, 0), S_OK);
}

TEST_F(KeyedMutexTest, CountsHoldsAndOutcomes) {
  const Counters before = ReadCounters(DeviceGroup::kOwn);
  ASSERT_EQ(maker->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(opener->AcquireSync(0, 0), kTimeout);
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).heldMutexes, before.heldMutexes + 1);
  ASSERT_EQ(maker->ReleaseSync(0), S_OK);
  const Counters after = ReadCounters(DeviceGroup::kOwn);
  EXPECT_EQ(after.heldMutexes, before.heldMutexes);
  EXPECT_EQ(after.acquired, before.acquired + 1);
  EXPECT_EQ(after.timedOut, before.timedOut + 1);
}

}  // namespace
}  // namespace bench::test
