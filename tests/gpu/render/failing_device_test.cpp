#include <array>
#include <cstddef>
#include <cstdint>

#include "renderer_fixture.h"

namespace ombrel::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::Field;
using testing::IsEmpty;
using testing::IsNull;
using testing::SizeIs;

class FailingDeviceTest : public RendererTest {
 protected:
  // All that a headset asks of a renderer that has its device. The results are looked at elsewhere; here nothing must
  // go wrong.
  void DoEverything() {
    renderer->Configure(kOutput);
    renderer->CreateOutputTextures();
    const SwapTexture swap = renderer->CreateSwapTexture({64, 48, kRgba, 1});
    renderer->RegisterTexture(swap.handle);
    static_cast<void>(renderer->Sharing());
    for (const std::int32_t output : {0, 1}) {
      renderer->AcquireOutput(output, 1);
      renderer->AcquireSyncTexture(swap.handle, 1);
      renderer->BeginLayers();
      renderer->ComposeLayer(output, {swap.handle, swap.handle, &kWhole});
      renderer->CopyToOutput(swap.handle, output, true, 1);
      renderer->ReleaseOutput(output);
      renderer->ClearOutput(output);
      renderer->ReleaseSyncTexture();
    }
    renderer->UnregisterTexture(swap.handle);
    renderer->CreateOutputTextures();
  }
};

TEST_F(FailingDeviceTest, WithoutADeviceEveryCallIsHarmless) {
  calls.Fail(bench::DeviceCall::kCreateDevice, E_FAIL);
  renderer->CreateDevice();
  DoEverything();
  EXPECT_THAT(calls.All(), SizeIs(0));
}

TEST_F(FailingDeviceTest, WithoutADeviceThereIsNothing) {
  calls.Fail(bench::DeviceCall::kCreateDevice, E_FAIL);
  EXPECT_FALSE(Start());
  EXPECT_FALSE(renderer->IsReady());
  EXPECT_THAT(renderer->Sharing().handles, Each(0u));
  EXPECT_FALSE(renderer->AcquireOutput(0, 1));
  EXPECT_FALSE(renderer->ReleaseOutput(0));
  EXPECT_EQ(renderer->CreateSwapTexture({64, 48, kRgba, 1}).handle, 0u);
}

TEST_F(FailingDeviceTest, BeforeADeviceIsMadeEveryCallIsHarmless) {
  EXPECT_FALSE(renderer->CreateOutputTextures());
  renderer->RegisterTexture(0x7777);
  renderer->BeginLayers();
  renderer->ComposeLayer(0, {1, 2, &kWhole});
  renderer->ClearOutput(0);
  EXPECT_TRUE(renderer->CopyToOutput(1, 0, true, 1));
  EXPECT_FALSE(renderer->IsReady());
}

TEST_F(FailingDeviceTest, ATextureThatCannotBeMadeHasNoHandle) {
  ASSERT_TRUE(Start());
  calls.Fail(bench::DeviceCall::kCreateTexture2D, DXGI_ERROR_DEVICE_REMOVED);
  EXPECT_EQ(renderer->CreateSwapTexture({64, 48, kRgba, 1}).handle, 0u);
  calls.Allow(bench::DeviceCall::kCreateTexture2D);
  calls.Fail(bench::DeviceCall::kGetSharedHandle, E_FAIL);
  EXPECT_EQ(renderer->CreateSwapTexture({64, 48, kRgba, 1}).handle, 0u);
  EXPECT_THAT(renderer->Sharing().handles, Each(0u));
}

TEST_F(FailingDeviceTest, OutputsWithoutAKeyedMutexCanNeitherBeHadNorReleased) {
  calls.Fail(bench::DeviceCall::kQueryKeyedMutex, E_NOINTERFACE);
  ASSERT_TRUE(Start());
  EXPECT_EQ(calls.Asked(bench::DeviceCall::kQueryKeyedMutex), 2u);
  for (const std::int32_t output : {0, 1}) {
    EXPECT_FALSE(renderer->AcquireOutput(output, 1));
    EXPECT_FALSE(renderer->ReleaseOutput(output));
  }
  EXPECT_EQ(calls.Asked(bench::DeviceCall::kAcquireSync), 0u);
}

TEST_F(FailingDeviceTest, ATextureOfTheRuntimeWithoutAKeyedMutexIsCopiedAsItIs) {
  ASSERT_TRUE(Start());
  const auto texture = runtime.MakeShared(64, 48, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  // Held elsewhere, so that an acquire would time out.
  ASSERT_EQ(texture.keyedMutex->AcquireSync(0, 0), S_OK);
  ASSERT_TRUE(renderer->AcquireOutput(0, kTimeoutMs));
  calls.Clear();
  calls.Fail(bench::DeviceCall::kQueryKeyedMutex, E_NOINTERFACE);
  EXPECT_TRUE(renderer->CopyToOutput(texture.handle, 0, true, 1));
  EXPECT_TRUE(renderer->AcquireSyncTexture(texture.handle, 1));
  renderer->ReleaseSyncTexture();
  EXPECT_THAT(calls.Of<Copied>(), SizeIs(1));
}

TEST_F(FailingDeviceTest, AViewThatCannotBeMadeIsLeftOut) {
  ASSERT_TRUE(Start());
  calls.Fail(bench::DeviceCall::kCreateShaderResourceView, E_OUTOFMEMORY);
  const auto handle = MakeEyeTexture();
  Compose(handle, handle);
  EXPECT_THAT(calls.Of<Drawn>(), AllOf(SizeIs(2), Each(Field(&Drawn::view, IsNull()))));
}

TEST_F(FailingDeviceTest, WhatFailedBeforeCanSucceedLater) {
  calls.Fail(bench::DeviceCall::kCreateTexture2D, E_OUTOFMEMORY);
  EXPECT_FALSE(Start());
  calls.Allow(bench::DeviceCall::kCreateTexture2D);
  EXPECT_TRUE(renderer->CreateOutputTextures());
  EXPECT_TRUE(renderer->IsReady());
}

using bench::DeviceCall;

// Calls that come when a device is there.
constexpr std::array kCalls{DeviceCall::kCreateBuffer,
                            DeviceCall::kCreateTexture2D,
                            DeviceCall::kCreateShaderResourceView,
                            DeviceCall::kCreateBlendState,
                            DeviceCall::kCreateSamplerState,
                            DeviceCall::kCreateRenderTargetView,
                            DeviceCall::kMap,
                            DeviceCall::kOpenSharedResource,
                            DeviceCall::kGetSharedHandle,
                            DeviceCall::kQueryKeyedMutex,
                            DeviceCall::kAcquireSync,
                            DeviceCall::kReleaseSync};

TEST_F(FailingDeviceTest, AnyCallMayFailFromTheBeginning) {
  for (const DeviceCall call : kCalls) {
    calls.Fail(call, DXGI_ERROR_DEVICE_REMOVED);
    renderer = MakeHeadsetRenderer();
    renderer->CreateDevice();
    DoEverything();
    EXPECT_GE(calls.Asked(call), 1u) << static_cast<int>(call);
    calls.Allow(call);
  }
}

TEST_F(FailingDeviceTest, AnyCallMayFailLaterAndSucceedAgain) {
  renderer->CreateDevice();
  for (const DeviceCall call : kCalls) {
    DoEverything();
    calls.Fail(call, DXGI_ERROR_DEVICE_REMOVED);
    DoEverything();
    calls.Allow(call);
  }
  EXPECT_TRUE(renderer->CreateOutputTextures());
}

// One object of the pipeline: the call that makes it, and how many such calls come before.
struct Made {
  DeviceCall call;
  std::size_t nth;
};

// The mirror's shaders are made before the layers', the premultiplied blend state before the opaque one.
constexpr std::array kNeeded{Made{DeviceCall::kCreateVertexShader, 1},    Made{DeviceCall::kCreatePixelShader, 1},
                             Made{DeviceCall::kCreateBuffer, 0},          Made{DeviceCall::kCreateBuffer, 1},
                             Made{DeviceCall::kCreateBlendState, 1},      Made{DeviceCall::kCreateSamplerState, 0},
                             Made{DeviceCall::kCreateRenderTargetView, 0}};
constexpr std::array kSpare{Made{DeviceCall::kCreateVertexShader, 0}, Made{DeviceCall::kCreatePixelShader, 0},
                            Made{DeviceCall::kCreateBlendState, 0}};

class MissingObjectTest : public FailingDeviceTest {
 protected:
  std::size_t DrawsWithout(const Made& object) {
    renderer = MakeHeadsetRenderer();
    calls.FailOne(object.call, E_OUTOFMEMORY, object.nth);
    EXPECT_TRUE(Start());
    calls.Allow(object.call);
    calls.Clear();
    const auto handle = MakeEyeTexture();
    Compose(handle, handle);
    return calls.Of<Drawn>().size();
  }
};

TEST_F(MissingObjectTest, NothingIsDrawnWithoutAnObjectThatALayerNeeds) {
  for (const Made& object : kNeeded) {
    EXPECT_EQ(DrawsWithout(object), 0u) << static_cast<int>(object.call) << ", " << object.nth;
  }
}

TEST_F(MissingObjectTest, WhatNoLayerNeedsIsNotMissed) {
  for (const Made& object : kSpare) {
    EXPECT_EQ(DrawsWithout(object), 2u) << static_cast<int>(object.call) << ", " << object.nth;
  }
}

TEST_F(MissingObjectTest, LayersAreDrawnAgainOnceItCouldBeMade) {
  EXPECT_EQ(DrawsWithout({DeviceCall::kCreateSamplerState, 0}), 0u);
  EXPECT_TRUE(renderer->CreateOutputTextures());
  const auto handle = MakeEyeTexture();
  Compose(handle, handle);
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(2));
}

TEST_F(FailingDeviceTest, WithoutShadersEveryCallIsHarmless) {
  for (const DeviceCall call : {DeviceCall::kCreateVertexShader, DeviceCall::kCreatePixelShader}) {
    calls.Fail(call, E_OUTOFMEMORY);
    renderer = MakeHeadsetRenderer();
    renderer->CreateDevice();
    DoEverything();
    calls.Allow(call);
  }
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
}

}  // namespace
}  // namespace ombrel::test
