#include "side.h"

#include "sharing/counters.h"
#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

#include <optional>

namespace bench::test {
namespace {

class LifetimeTest : public testing::Test {
 protected:
  static Counters Now() { return ReadCounters(DeviceGroup::kOwn); }

  ComPtr<ID3D11Texture2D> MakeKeyed() const { return side->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX)); }

  Counters before = Now();
  std::optional<Side> side{std::in_place};
};

TEST_F(LifetimeTest, ASharedTextureGoesWithItsLastReference) {
  auto texture = MakeKeyed();
  EXPECT_EQ(Now().liveSharedTextures, before.liveSharedTextures + 1);
  EXPECT_EQ(Now().liveTextures, before.liveTextures + 1);
  texture.Reset();
  EXPECT_EQ(Now().liveSharedTextures, before.liveSharedTextures);
  EXPECT_EQ(Now().liveTextures, before.liveTextures);
}

TEST_F(LifetimeTest, AKeyedMutexKeepsItsTexture) {
  auto texture = MakeKeyed();
  auto mutex = FindKeyedMutex(texture.Get());
  texture.Reset();
  EXPECT_EQ(Now().liveSharedTextures, before.liveSharedTextures + 1);
  mutex.Reset();
  EXPECT_EQ(Now().liveSharedTextures, before.liveSharedTextures);
}

TEST_F(LifetimeTest, AViewKeepsItsTextureAndItsHandle) {
  auto texture = MakeKeyed();
  const std::uint32_t handle = SharedHandle(texture.Get());
  ComPtr<ID3D11ShaderResourceView> view;
  ASSERT_EQ(side->device->CreateShaderResourceView(texture.Get(), nullptr, &view), S_OK);
  texture.Reset();
  EXPECT_NE(Side().Open(handle), nullptr);
  view.Reset();
  EXPECT_EQ(Side().Open(handle), nullptr);
}

TEST_F(LifetimeTest, TheDeviceGoesAfterItsTexturesWereCopied) {
  auto texture = MakeKeyed();
  ASSERT_EQ(FindKeyedMutex(texture.Get())->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(FindKeyedMutex(texture.Get())->ReleaseSync(0), S_OK);
  texture.Reset();
  side.reset();
  EXPECT_EQ(Now().liveDevices, before.liveDevices);
}

TEST_F(LifetimeTest, TheDeviceGoesThoughACopiedTextureIsStillBound) {
  auto texture = MakeKeyed();
  ComPtr<ID3D11RenderTargetView> view;
  ASSERT_EQ(side->device->CreateRenderTargetView(texture.Get(), nullptr, &view), S_OK);
  side->context->OMSetRenderTargets(1, view.GetAddressOf(), nullptr);
  ASSERT_EQ(FindKeyedMutex(texture.Get())->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(FindKeyedMutex(texture.Get())->ReleaseSync(0), S_OK);
  view.Reset();
  texture.Reset();
  side.reset();
  EXPECT_EQ(Now().liveDevices, before.liveDevices);
  EXPECT_EQ(Now().liveSharedTextures, before.liveSharedTextures);
}

TEST_F(LifetimeTest, AHoldEndsWithItsTexture) {
  auto texture = MakeKeyed();
  ASSERT_EQ(FindKeyedMutex(texture.Get())->AcquireSync(0, 0), S_OK);
  texture.Reset();
  EXPECT_EQ(Now().heldMutexes, before.heldMutexes);
}

TEST_F(LifetimeTest, OpeningAndClosingLeavesNothingBehind) {
  const auto texture = MakeKeyed();
  const Side opener;
  const Counters start = Now();
  for (int count = 0; count < 200; ++count) {
    const auto opened = opener.Open(SharedHandle(texture.Get()));
    ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
    ASSERT_EQ(FindKeyedMutex(opened.Get())->ReleaseSync(0), S_OK);
  }
  EXPECT_EQ(Now().liveTextures, start.liveTextures);
  EXPECT_EQ(Now().liveSharedTextures, start.liveSharedTextures);
  EXPECT_EQ(Now().heldMutexes, start.heldMutexes);
}

TEST_F(LifetimeTest, ABufferIsCounted) {
  const D3D11_BUFFER_DESC description{16, D3D11_USAGE_DEFAULT, D3D11_BIND_CONSTANT_BUFFER, 0, 0, 0};
  ComPtr<ID3D11Buffer> buffer;
  ASSERT_EQ(side->device->CreateBuffer(&description, nullptr, &buffer), S_OK);
  EXPECT_EQ(Now().liveBuffers, before.liveBuffers + 1);
  buffer.Reset();
  EXPECT_EQ(Now().liveBuffers, before.liveBuffers);
}

TEST_F(LifetimeTest, EqualStatesAreCountedOnce) {
  const D3D11_SAMPLER_DESC description{D3D11_FILTER_MIN_MAG_MIP_POINT,
                                       D3D11_TEXTURE_ADDRESS_WRAP,
                                       D3D11_TEXTURE_ADDRESS_WRAP,
                                       D3D11_TEXTURE_ADDRESS_WRAP,
                                       0,
                                       1,
                                       D3D11_COMPARISON_NEVER,
                                       {},
                                       0,
                                       0};
  ComPtr<ID3D11SamplerState> first;
  ComPtr<ID3D11SamplerState> second;
  ASSERT_EQ(side->device->CreateSamplerState(&description, &first), S_OK);
  ASSERT_EQ(side->device->CreateSamplerState(&description, &second), S_OK);
  EXPECT_EQ(Now().liveStates, before.liveStates + 1);
  first.Reset();
  second.Reset();
  EXPECT_EQ(Now().liveStates, before.liveStates);
}

}  // namespace
}  // namespace bench::test
