#include <cfloat>
#include <utility>

#include "renderer_fixture.h"
#include "sharing/counters.h"

namespace ombrel::test {
namespace {

using testing::Each;
using testing::SizeIs;

class OutputTexturesTest : public RendererTest {
 protected:
  static bench::Counters Live() { return bench::ReadCounters(bench::DeviceGroup::kIntercepted); }
};

TEST_F(OutputTexturesTest, AreTwoWithAKeyedMutexEach) {
  ASSERT_TRUE(Start({kRgba, 1000, 600, 0}));
  const auto made = calls.Of<TextureMade>();
  ASSERT_EQ(made.size(), 2u);
  for (const auto& [desc] : made) ExpectTexture(desc, 1000, 600, 28, 0x100);
}

TEST_F(OutputTexturesTest, FollowTheFormatRuleThemselvesAndInTheirViews) {
  renderer->CreateDevice();
  for (const auto& [given, used] : {std::pair{28, 28}, {27, 28}, {90, 91}, {87, 87}, {29, 29}}) {
    SCOPED_TRACE(given);
    calls.Clear();
    renderer->Configure({static_cast<std::uint32_t>(given), 64, 48, 0});
    ASSERT_TRUE(renderer->CreateOutputTextures());
    EXPECT_THAT(calls.Of<TextureMade>(), SizeIs(2));
    EXPECT_THAT(calls.Of<TargetViewMade>(), SizeIs(2));
    for (const auto& [desc] : calls.Of<TextureMade>()) EXPECT_EQ(desc.Format, used);
    for (const auto& [desc] : calls.Of<TargetViewMade>()) EXPECT_EQ(desc.Format, used);
  }
}

TEST_F(OutputTexturesTest, AreSeenThroughPlainTargetViews) {
  ASSERT_TRUE(Start());
  const auto made = calls.Of<TargetViewMade>();
  ASSERT_EQ(made.size(), 2u);
  for (const auto& [desc] : made) {
    EXPECT_EQ(desc.ViewDimension, D3D11_RTV_DIMENSION_TEXTURE2D);
    EXPECT_EQ(desc.Texture2D.MipSlice, 0u);
  }
}

TEST_F(OutputTexturesTest, AreFlushedOnceBetweenTexturesAndViews) {
  ASSERT_TRUE(Start());
  std::string order;
  for (const RecordedCall& call : calls.All()) {
    if (std::holds_alternative<TextureMade>(call)) order += 't';
    if (std::holds_alternative<Flushed>(call)) order += 'f';
    if (std::holds_alternative<TargetViewMade>(call)) order += 'v';
  }
  EXPECT_EQ(order, "ttfvv");
}

TEST_F(OutputTexturesTest, ComeWithTwoConstantBuffersOf16Bytes) {
  ASSERT_TRUE(Start());
  const auto made = calls.Of<BufferMade>();
  ASSERT_EQ(made.size(), 2u);
  for (const auto& [desc] : made) {
    EXPECT_EQ(desc.ByteWidth, 16u);
    EXPECT_EQ(desc.Usage, D3D11_USAGE_DYNAMIC);
    EXPECT_EQ(desc.BindFlags, static_cast<UINT>(D3D11_BIND_CONSTANT_BUFFER));
    EXPECT_EQ(desc.CPUAccessFlags, static_cast<UINT>(D3D11_CPU_ACCESS_WRITE));
    EXPECT_EQ(desc.MiscFlags, 0u);
  }
}

TEST_F(OutputTexturesTest, ComeWithAPremultipliedBlendStateAndThenAnOpaqueOne) {
  ASSERT_TRUE(Start());
  const auto made = calls.Of<BlendMade>();
  ASSERT_EQ(made.size(), 2u);
  EXPECT_TRUE(made[0].desc.RenderTarget[0].BlendEnable);
  EXPECT_FALSE(made[1].desc.RenderTarget[0].BlendEnable);
  for (const auto& [desc] : made) {
    const auto& target = desc.RenderTarget[0];
    EXPECT_FALSE(desc.AlphaToCoverageEnable);
    EXPECT_FALSE(desc.IndependentBlendEnable);
    EXPECT_EQ(target.SrcBlend, D3D11_BLEND_ONE);
    EXPECT_EQ(target.DestBlend, D3D11_BLEND_INV_SRC_ALPHA);
    EXPECT_EQ(target.BlendOp, D3D11_BLEND_OP_ADD);
    EXPECT_EQ(target.SrcBlendAlpha, D3D11_BLEND_ONE);
    EXPECT_EQ(target.DestBlendAlpha, D3D11_BLEND_INV_SRC_ALPHA);
    EXPECT_EQ(target.BlendOpAlpha, D3D11_BLEND_OP_ADD);
    EXPECT_EQ(target.RenderTargetWriteMask, 15);
  }
}

TEST_F(OutputTexturesTest, BindThePremultipliedStateOnce) {
  ASSERT_TRUE(Start());
  const auto bound = calls.Of<BlendBound>();
  ASSERT_EQ(bound.size(), 1u);
  EXPECT_TRUE(bound[0].enabled);
}

TEST_F(OutputTexturesTest, ComeWithALinearWrappingSampler) {
  ASSERT_TRUE(Start());
  const auto made = calls.Of<SamplerMade>();
  ASSERT_EQ(made.size(), 1u);
  const D3D11_SAMPLER_DESC& desc = made[0].desc;
  EXPECT_EQ(desc.Filter, D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT);
  EXPECT_EQ(desc.AddressU, D3D11_TEXTURE_ADDRESS_WRAP);
  EXPECT_EQ(desc.AddressV, D3D11_TEXTURE_ADDRESS_WRAP);
  EXPECT_EQ(desc.AddressW, D3D11_TEXTURE_ADDRESS_WRAP);
  EXPECT_EQ(desc.MipLODBias, 0.0F);
  EXPECT_EQ(desc.MaxAnisotropy, 16u);
  EXPECT_EQ(desc.ComparisonFunc, D3D11_COMPARISON_NEVER);
  EXPECT_THAT(desc.BorderColor, Each(0.0F));
  EXPECT_EQ(desc.MinLOD, 0.0F);
  EXPECT_EQ(desc.MaxLOD, FLT_MAX);
}

TEST_F(OutputTexturesTest, MakeTheRendererReady) {
  renderer->CreateDevice();
  EXPECT_FALSE(renderer->IsReady());
  renderer->Configure(kOutput);
  ASSERT_TRUE(renderer->CreateOutputTextures());
  EXPECT_TRUE(renderer->IsReady());
}

TEST_F(OutputTexturesTest, ThatFailLeaveTheRendererNotReady) {
  ASSERT_TRUE(Start());
  calls.Fail(bench::DeviceCall::kCreateTexture2D, E_OUTOFMEMORY);
  EXPECT_FALSE(renderer->CreateOutputTextures());
  EXPECT_FALSE(renderer->IsReady());
}

TEST_F(OutputTexturesTest, MadeAnewTakeThePlaceOfTheOldOnes) {
  ASSERT_TRUE(Start());
  const auto before = renderer->Sharing().handles;
  const auto live = Live();
  ASSERT_TRUE(renderer->CreateOutputTextures());
  const auto after = renderer->Sharing().handles;
  EXPECT_NE(after[0], before[0]);
  EXPECT_NE(after[1], before[1]);
  EXPECT_FALSE(runtime.CanOpen(before[0]));
  EXPECT_TRUE(runtime.CanOpen(after[0]) && runtime.CanOpen(after[1]));
  EXPECT_EQ(Live().liveSharedTextures, live.liveSharedTextures);
  EXPECT_EQ(Live().liveViews, live.liveViews);
  EXPECT_EQ(Live().liveBuffers, live.liveBuffers);
}

TEST_F(OutputTexturesTest, GoWithTheRenderer) {
  ASSERT_TRUE(Start());
  MakeEyeTexture();
  ASSERT_TRUE(renderer->AcquireOutput(0, kTimeoutMs));
  renderer->ClearOutput(0);
  renderer.reset();
  eyeTextures.clear();
  const auto live = Live();
  EXPECT_EQ(live.liveDevices, 0);
  EXPECT_EQ(live.liveTextures, 0);
  EXPECT_EQ(live.liveViews, 0);
  EXPECT_EQ(live.heldMutexes, 0);
}

TEST_F(OutputTexturesTest, ArePassedOnByKeyZero) {
  ASSERT_TRUE(Start());
  const auto handles = renderer->Sharing().handles;
  ASSERT_TRUE(renderer->AcquireOutput(1, 11));
  ASSERT_TRUE(renderer->ReleaseOutput(1));
  const auto acquired = calls.Of<Acquired>();
  const auto released = calls.Of<Released>();
  ASSERT_THAT(acquired, SizeIs(1));
  ASSERT_THAT(released, SizeIs(1));
  EXPECT_EQ(acquired[0].handle, handles[1]);
  EXPECT_EQ(acquired[0].key, 0u);
  EXPECT_EQ(acquired[0].timeoutMs, 11u);
  EXPECT_EQ(released[0].handle, handles[1]);
  EXPECT_EQ(released[0].key, 0u);
}

TEST_F(OutputTexturesTest, AreNotHadAfterATimeOutOrAnAbandonedHold) {
  ASSERT_TRUE(Start());
  for (const DWORD result : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_ABANDONED}}) {
    calls.Fail(bench::DeviceCall::kAcquireSync, static_cast<HRESULT>(result));
    EXPECT_FALSE(renderer->AcquireOutput(0, 1));
  }
  calls.Allow(bench::DeviceCall::kAcquireSync);
  EXPECT_TRUE(renderer->AcquireOutput(0, 1));
}

TEST_F(OutputTexturesTest, CannotBeReleasedByWhoDoesNotHoldThem) {
  ASSERT_TRUE(Start());
  EXPECT_FALSE(renderer->ReleaseOutput(0));
}

TEST_F(OutputTexturesTest, TellTheCompanionWhetherTheyAreUpsideDown) {
  ASSERT_TRUE(Start({kRgba, 64, 48, 1}));
  EXPECT_EQ(renderer->Sharing().invertY, 1);
}

}  // namespace
}  // namespace ombrel::test
