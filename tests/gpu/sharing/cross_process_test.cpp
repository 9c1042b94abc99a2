// Two processes and one texture: what the keyed mutex and the pixels do between them.
#include <gtest/gtest.h>

#include <future>
#include <set>

#include "gpu_support/companion.h"
#include "side.h"

namespace bench::test {
namespace {

using ombrel::test::Companion;

class CrossProcessTest : public testing::Test {
 protected:
  void SetUp() override { Make(); }
  // A texture that the other process has open.
  void Make(UINT width = kWidth, UINT height = kHeight) {
    texture = side.Create(
        TextureDescription(width, height, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
    ASSERT_NE(texture, nullptr);
    mutex = FindKeyedMutex(texture.Get());
    other.Attach({SharedHandle(texture.Get())});
  }
  // Draws the pattern here and has the other process look at each pixel.
  void ExpectToArrive(std::uint8_t seed, UINT width, UINT height) {
    ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
    side.Write(texture.Get(), Pattern(seed, width, height));
    ASSERT_EQ(mutex->ReleaseSync(0), S_OK);
    const auto differences =
        other.Look(0, {{"all", 0, 0, static_cast<int>(width), static_cast<int>(height), {}, seed}});
    EXPECT_TRUE(differences.empty()) << differences[0];
  }

  Side side;
  Companion other;
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIKeyedMutex> mutex;
};

TEST_F(CrossProcessTest, EveryPixelArrivesInTheOtherProcess) { ExpectToArrive(0x42, kWidth, kHeight); }

TEST_F(CrossProcessTest, EveryPixelOfALargePictureArrives) {
  Make(2560, 1440);
  ExpectToArrive(0x17, 2560, 1440);
}

TEST_F(CrossProcessTest, EveryPixelThatTheOtherProcessDrewArrivesHere) {
  ASSERT_EQ(other.Acquire(0, kLongMs), S_OK);
  other.Paint(0, 113);
  ASSERT_EQ(other.Release(0), S_OK);
  ASSERT_EQ(mutex->AcquireSync(0, kLongMs), S_OK);
  EXPECT_EQ(side.Read(texture.Get()), Pattern(113));
}

TEST_F(CrossProcessTest, TheOtherProcessIsKeptOutWhileWeHoldTheMutex) {
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(other.Acquire(0, 100), kTimeout);
}

TEST_F(CrossProcessTest, WeAreKeptOutWhileTheOtherProcessHoldsTheMutex) {
  ASSERT_EQ(other.Acquire(0, kLongMs), S_OK);
  EXPECT_EQ(mutex->AcquireSync(0, 50), kTimeout);
  EXPECT_TRUE(FAILED(mutex->ReleaseSync(0)));
}

TEST_F(CrossProcessTest, OurReleaseWakesTheOtherProcess) {
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  auto acquire = std::async(std::launch::async, [this] { return other.Acquire(0, kLongMs, 5); });
  EXPECT_EQ(acquire.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  ASSERT_EQ(mutex->ReleaseSync(5), S_OK);
  EXPECT_EQ(acquire.get(), S_OK);
}

TEST_F(CrossProcessTest, AHolderThatWasKilledLeavesTheMutexAbandoned) {
  ASSERT_EQ(other.Acquire(0, kLongMs), S_OK);
  other.Kill();
  EXPECT_EQ(mutex->AcquireSync(0, 0), kAbandoned);
  EXPECT_TRUE(FAILED(mutex->ReleaseSync(0)));
}

TEST_F(CrossProcessTest, AWaiterLearnsThatTheHolderWasKilled) {
  ASSERT_EQ(other.Acquire(0, kLongMs), S_OK);
  auto waiter = std::async(std::launch::async, [this] { return mutex->AcquireSync(0, kLongMs); });
  ASSERT_EQ(waiter.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  other.Kill();
  EXPECT_EQ(waiter.get(), kAbandoned);
}

TEST_F(CrossProcessTest, AnExitWithoutReleaseLeavesTheMutexAbandoned) {
  ASSERT_EQ(other.Acquire(0, kLongMs), S_OK);
  other.End();
  EXPECT_EQ(mutex->AcquireSync(0, 0), kAbandoned);
}

TEST_F(CrossProcessTest, ATextureOutlivesTheProcessThatMadeIt) {
  const auto opened = side.Open(other.MakeTexture(77));
  ASSERT_NE(opened, nullptr);
  other.Kill();
  ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(side.Read(opened.Get()), Pattern(77));
}

TEST_F(CrossProcessTest, AHandleNamesNothingOnceNobodyHasTheTexture) {
  const auto handle = other.MakeTexture(1);
  other.Kill();
  EXPECT_EQ(side.Open(handle), nullptr);
}

TEST_F(CrossProcessTest, HandlesOfTwoProcessesDiffer) {
  std::set<std::uint32_t> handles{other.MakeTexture(1), other.MakeTexture(1)};
  std::vector<ComPtr<ID3D11Texture2D>> textures;
  for (int count = 0; count < 20; ++count) {
    textures.push_back(side.Create(Description(D3D11_RESOURCE_MISC_SHARED)));
    handles.insert(SharedHandle(textures.back().Get()));
  }
  EXPECT_EQ(handles.size(), 22u);
}

}  // namespace
}  // namespace bench::test
