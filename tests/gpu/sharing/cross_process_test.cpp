#include "peer_process.h"
#include "side.h"

#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <set>

namespace bench::test {
namespace {

Pixels ReadFile(const std::string& path, UINT width = kWidth, UINT height = kHeight) {
  Pixels pixels(std::size_t{width} * height + 1);  // one more, to notice a longer file
  std::ifstream stream(path, std::ios::binary);
  stream.read(reinterpret_cast<char*>(pixels.data()), static_cast<std::streamsize>(pixels.size() * sizeof(pixels[0])));
  pixels.resize(static_cast<std::size_t>(stream.gcount()) / sizeof(pixels[0]));
  return pixels;
}

HANDLE ReadHandle(const std::string& path) {
  std::uintptr_t value = 0;
  std::ifstream(path) >> value;
  return reinterpret_cast<HANDLE>(value);
}

class CrossProcessTest : public testing::Test {
 protected:
  void Make(UINT width = kWidth, UINT height = kHeight) {
    auto description = Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
    description.Width = width;
    description.Height = height;
    texture = side.Create(description);
    ASSERT_NE(texture, nullptr);
    mutex = KeyedMutex(texture.Get());
    handle = HandleText(SharedHandle(texture.Get()));
  }

  Side side;
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIKeyedMutex> mutex;
  std::string handle;
};

TEST_F(CrossProcessTest, EveryPixelArrivesInTheOtherProcess) {
  Make();
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  side.Write(texture.Get(), Pattern(0x42));
  ASSERT_EQ(mutex->ReleaseSync(0), S_OK);
  const std::string file = TemporaryFile();
  ASSERT_EQ(PeerProcess({"read", handle, file}).Wait(), 0u);
  EXPECT_EQ(ReadFile(file), Pattern(0x42));
}

TEST_F(CrossProcessTest, EveryPixelOfALargePictureArrives) {
  Make(2560, 1440);
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  side.Write(texture.Get(), Pattern(0x17, 2560, 1440));
  ASSERT_EQ(mutex->ReleaseSync(0), S_OK);
  const std::string file = TemporaryFile();
  ASSERT_EQ(PeerProcess({"read", handle, file}).Wait(), 0u);
  EXPECT_TRUE(ReadFile(file, 2560, 1440) == Pattern(0x17, 2560, 1440));
}

TEST_F(CrossProcessTest, EveryPixelThatTheOtherProcessDrewArrivesHere) {
  Make();
  ASSERT_EQ(PeerProcess({"write", handle, "113"}).Wait(), 0u);
  ASSERT_EQ(mutex->AcquireSync(0, kLongMs), S_OK);
  EXPECT_EQ(side.Read(texture.Get()), Pattern(113));
}

TEST_F(CrossProcessTest, TheOtherProcessIsKeptOutWhileWeHoldTheMutex) {
  Make();
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(PeerProcess({"acquire", handle, "0", "100"}).Wait(), static_cast<DWORD>(WAIT_TIMEOUT));
}

TEST_F(CrossProcessTest, WeAreKeptOutWhileTheOtherProcessHoldsTheMutex) {
  Make();
  const PeerEvent held;
  const PeerProcess peer({"hold", handle, held.Name()});
  ASSERT_TRUE(held.Wait());
  EXPECT_EQ(mutex->AcquireSync(0, 50), kTimeout);
  EXPECT_TRUE(FAILED(mutex->ReleaseSync(0)));
}

TEST_F(CrossProcessTest, OurReleaseWakesTheOtherProcess) {
  Make();
  ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
  const PeerProcess peer({"acquire", handle, "5", "20000"});
  Sleep(1500);  // long enough for the peer to be waiting; if it is not, the release is found later
  ASSERT_EQ(mutex->ReleaseSync(5), S_OK);
  EXPECT_EQ(peer.Wait(), 0u);
}

TEST_F(CrossProcessTest, AHolderThatWasKilledLeavesTheMutexAbandoned) {
  Make();
  const PeerEvent held;
  const PeerProcess peer({"hold", handle, held.Name()});
  ASSERT_TRUE(held.Wait());
  peer.Kill();
  EXPECT_EQ(mutex->AcquireSync(0, 0), kAbandoned);
  EXPECT_TRUE(FAILED(mutex->ReleaseSync(0)));
}

TEST_F(CrossProcessTest, AWaiterLearnsThatTheHolderWasKilled) {
  Make();
  const PeerEvent held;
  const PeerProcess peer({"hold", handle, held.Name()});
  ASSERT_TRUE(held.Wait());
  auto waiter = std::async(std::launch::async, [this] { return mutex->AcquireSync(0, kLongMs); });
  ASSERT_EQ(waiter.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  peer.Kill();
  EXPECT_EQ(waiter.get(), kAbandoned);
}

TEST_F(CrossProcessTest, AnExitWithoutReleaseLeavesTheMutexAbandoned) {
  Make();
  ASSERT_EQ(PeerProcess({"acquire", handle, "0", "0"}).Wait(), 0u);
  EXPECT_EQ(mutex->AcquireSync(0, 0), kAbandoned);
}

TEST_F(CrossProcessTest, ATextureOutlivesTheProcessThatMadeIt) {
  const PeerEvent made;
  const std::string file = TemporaryFile();
  const PeerProcess peer({"make", "77", file, made.Name()});
  ASSERT_TRUE(made.Wait());
  const auto opened = side.Open(ReadHandle(file));
  ASSERT_NE(opened, nullptr);
  peer.Kill();
  ASSERT_EQ(KeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(side.Read(opened.Get()), Pattern(77));
}

TEST_F(CrossProcessTest, AHandleNamesNothingOnceNobodyHasTheTexture) {
  const PeerEvent made;
  const std::string file = TemporaryFile();
  const PeerProcess peer({"make", "1", file, made.Name()});
  ASSERT_TRUE(made.Wait());
  peer.Kill();
  EXPECT_EQ(side.Open(ReadHandle(file)), nullptr);
}

TEST_F(CrossProcessTest, HandlesOfTwoProcessesDiffer) {
  std::set<HANDLE> handles;
  std::vector<ComPtr<ID3D11Texture2D>> textures;
  for (int count = 0; count < 20; ++count) {
    textures.push_back(side.Create(Description(D3D11_RESOURCE_MISC_SHARED)));
    handles.insert(SharedHandle(textures.back().Get()));
  }
  for (int count = 0; count < 2; ++count) {
    const PeerEvent made;
    const std::string file = TemporaryFile();
    const PeerProcess peer({"make", "1", file, made.Name()});
    ASSERT_TRUE(made.Wait());
    handles.insert(ReadHandle(file));
  }
  EXPECT_EQ(handles.size(), 22u);
}

}  // namespace
}  // namespace bench::test
