#include <string>

#include "renderer_fixture.h"

namespace ombrel::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kFormat = DXGI_FORMAT_R8G8B8A8_UNORM;

class CopyTest : public RendererPixelTest {
 protected:
  void SetUp() override { ASSERT_TRUE(Start()); }

  RuntimeSide::Shared MakeFrame(UINT miscFlags) {
    return runtime.MakeShared(2 * kEyeWidth, kEyeHeight, kFormat, miscFlags);
  }
};

class FrameKindTest : public CopyTest, public testing::WithParamInterface<UINT> {};

TEST_P(FrameKindTest, AFinishedFrameArrivesPixelForPixel) {
  const auto frame = MakeFrame(GetParam());
  runtime.Paint(frame, Pattern(0x5A));
  ASSERT_TRUE(renderer->AcquireOutput(1, kTimeoutMs));
  ASSERT_TRUE(renderer->CopyToOutput(frame.handle, 1, true, kTimeoutMs));
  ASSERT_TRUE(renderer->ReleaseOutput(1));
  EXPECT_THAT(Look({{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, {}, 0x5A}}, 1), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WithAKeyedMutexAndWithout, FrameKindTest,
                         testing::Values(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX, D3D11_RESOURCE_MISC_SHARED));

TEST_F(CopyTest, NothingIsCopiedIntoAnOutputThatIsNotHeld) {
  const auto frame = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  EXPECT_TRUE(renderer->CopyToOutput(frame.handle, 0, false, kTimeoutMs));
  EXPECT_THAT(calls.Of<Copied>(), SizeIs(0));
}

TEST_F(CopyTest, AFrameThatIsHeldElsewhereIsWaitedForAndGivenUp) {
  const auto frame = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ASSERT_EQ(frame.keyedMutex->AcquireSync(0, 0), S_OK);
  EXPECT_FALSE(renderer->CopyToOutput(frame.handle, 0, true, 7));
  const auto acquired = calls.Of<Acquired>();
  ASSERT_THAT(acquired, SizeIs(1));
  EXPECT_EQ(acquired[0].handle, frame.handle);
  EXPECT_EQ(acquired[0].key, 0u);
  EXPECT_EQ(acquired[0].timeoutMs, 7u);
  EXPECT_THAT(calls.Of<Copied>(), SizeIs(0));
}

TEST_F(CopyTest, AFrameIsHeldWhileItIsCopiedAndGivenBack) {
  const auto frame = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  calls.Clear();
  ASSERT_TRUE(renderer->CopyToOutput(frame.handle, 0, true, kTimeoutMs));
  std::string order;
  for (const RecordedCall& call : calls.All()) {
    if (std::holds_alternative<Acquired>(call)) order += 'a';
    if (std::holds_alternative<Copied>(call)) order += 'c';
    if (const auto* released = std::get_if<Released>(&call)) order += released->key == 0 ? 'r' : '!';
  }
  EXPECT_EQ(order, "acr");
  EXPECT_EQ(frame.keyedMutex->AcquireSync(0, 0), S_OK);
}

TEST_F(CopyTest, AFrameThatCannotBeOpenedIsNotCopied) {
  EXPECT_TRUE(renderer->CopyToOutput(0x7777, 0, true, kTimeoutMs));
  EXPECT_TRUE(renderer->CopyToOutput(0, 0, true, kTimeoutMs));
  EXPECT_THAT(calls.Of<Copied>(), SizeIs(0));
}

TEST_F(CopyTest, ASyncTextureIsHeldUntilItIsGivenBack) {
  const auto sync = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ASSERT_TRUE(renderer->AcquireSyncTexture(sync.handle, kTimeoutMs));
  EXPECT_EQ(sync.keyedMutex->AcquireSync(0, 0), static_cast<HRESULT>(WAIT_TIMEOUT));
  renderer->ReleaseSyncTexture();
  EXPECT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
}

TEST_F(CopyTest, ASyncTextureThatIsHeldElsewhereIsNotHad) {
  const auto sync = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ASSERT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
  EXPECT_FALSE(renderer->AcquireSyncTexture(sync.handle, 3));
  EXPECT_EQ(calls.Of<Acquired>().back().timeoutMs, 3u);
  renderer->ReleaseSyncTexture();
  EXPECT_EQ(sync.keyedMutex->ReleaseSync(0), S_OK);
}

TEST_F(CopyTest, AnAbandonedSyncTextureIsNotHadEither) {
  const auto sync = MakeFrame(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  calls.Fail(bench::DeviceCall::kAcquireSync, static_cast<HRESULT>(WAIT_ABANDONED));
  EXPECT_FALSE(renderer->AcquireSyncTexture(sync.handle, kTimeoutMs));
  EXPECT_FALSE(renderer->CopyToOutput(sync.handle, 0, true, kTimeoutMs));
  EXPECT_THAT(calls.Of<Copied>(), SizeIs(0));
}

TEST_F(CopyTest, ASyncTextureThatCannotBeOpenedNeedsNoHold) {
  EXPECT_TRUE(renderer->AcquireSyncTexture(0x7777, kTimeoutMs));
  EXPECT_THAT(calls.Of<Acquired>(), SizeIs(0));
}

TEST_F(CopyTest, ASyncTextureWithoutKeyedMutexNeedsNoHold) {
  const auto sync = MakeFrame(D3D11_RESOURCE_MISC_SHARED);
  EXPECT_TRUE(renderer->AcquireSyncTexture(sync.handle, kTimeoutMs));
  EXPECT_THAT(calls.Of<Acquired>(), SizeIs(0));
  renderer->ReleaseSyncTexture();
  EXPECT_THAT(calls.Of<Released>(), SizeIs(0));
}

}  // namespace
}  // namespace ombrel::test
