#include "renderer_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class LayerStateTest : public RendererTest {
 protected:
  std::vector<Drawn> Draw(const EyeBounds& bounds = kWhole, std::int32_t output = 0) {
    const auto handle = MakeEyeTexture();
    calls.Clear();
    Compose(handle, handle, bounds, output);
    return calls.Of<Drawn>();
  }
};

TEST_F(LayerStateTest, EachEyeIsOneTriangleWithoutVertexBuffer) {
  ASSERT_TRUE(Start());
  const auto draws = Draw();
  ASSERT_THAT(draws, SizeIs(2));
  for (const Drawn& drawn : draws) {
    EXPECT_EQ(drawn.vertices, 3u);
    EXPECT_EQ(drawn.first, 0u);
    EXPECT_EQ(drawn.topology, D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    EXPECT_FALSE(drawn.hasInputLayout);
    EXPECT_FALSE(drawn.hasVertexBuffer);
    EXPECT_TRUE(drawn.hasSampler);
  }
}

TEST_F(LayerStateTest, TheOutputsTargetIsBoundAlone) {
  ASSERT_TRUE(Start());
  const auto first = Draw(kWhole, 0);
  const auto bound = calls.Of<TargetsBound>();
  ASSERT_THAT(bound, SizeIs(1));
  EXPECT_THAT(bound[0].views, SizeIs(1));
  EXPECT_EQ(bound[0].depth, nullptr);
  const auto second = Draw(kWhole, 1);
  EXPECT_NE(first[0].target, nullptr);
  EXPECT_EQ(first[0].target, first[1].target);
  EXPECT_NE(first[0].target, second[0].target);
}

TEST_F(LayerStateTest, TheOpaqueBlendIsBoundForEachFrame) {
  ASSERT_TRUE(Start());
  for (int frame = 0; frame < 2; ++frame) {
    const auto draws = Draw();
    const auto bound = calls.Of<BlendBound>();
    ASSERT_THAT(bound, SizeIs(1));
    EXPECT_FALSE(bound[0].enabled);
    EXPECT_FALSE(bound[0].hasFactor);
    EXPECT_EQ(bound[0].sampleMask, 0xFFFFFFFFu);
    EXPECT_FALSE(draws[0].blendEnabled);
  }
}

struct Size {
  std::uint32_t width, height;
  float eyeWidth;
};

class ViewportTest : public LayerStateTest {
 protected:
  void SetUp() override { renderer->CreateDevice(); }
  void ExpectHalves(const Size& size);
};

void ViewportTest::ExpectHalves(const Size& size) {
  const auto [width, height, eyeWidth] = size;
  renderer->Configure({kRgba, width, height, 0});
  ASSERT_TRUE(renderer->CreateOutputTextures());
  const auto draws = Draw();
  ASSERT_THAT(draws, SizeIs(2));
  for (std::size_t eye = 0; eye < 2; ++eye) {
    EXPECT_EQ(draws[eye].viewports, 1u);
    EXPECT_EQ(draws[eye].viewport.TopLeftX, static_cast<float>(eye) * eyeWidth);
    EXPECT_EQ(draws[eye].viewport.TopLeftY, 0.0F);
    EXPECT_EQ(draws[eye].viewport.Width, eyeWidth);
    EXPECT_EQ(draws[eye].viewport.Height, static_cast<float>(height));
    EXPECT_EQ(draws[eye].viewport.MinDepth, 0.0F);
    EXPECT_EQ(draws[eye].viewport.MaxDepth, 1.0F);
  }
}

TEST_F(ViewportTest, EachEyeHasHalfOfAnEvenWidth) { ExpectHalves({2560, 1440, 1280}); }

TEST_F(ViewportTest, TheOddColumnBelongsToNoEye) {
  ExpectHalves({2561, 1440, 1280});
  ExpectHalves({3, 5, 1});
}

TEST_F(LayerStateTest, EachEyesBoundsReachItsVertexShader) {
  ASSERT_TRUE(Start());
  const auto draws = Draw({{{0.125F, 0.25F, 0.5F, 0.75F}, {1.0F, 1.0F, 0.0F, 0.0F}}});
  ASSERT_THAT(draws, SizeIs(2));
  EXPECT_THAT(draws[0].bounds, ElementsAre(0.125F, 0.25F, 0.5F, 0.75F));
  EXPECT_THAT(draws[1].bounds, ElementsAre(1.0F, 1.0F, 0.0F, 0.0F));
}

TEST_F(LayerStateTest, TheInvertFlagReachesThePixelShaderAsAnInteger) {
  ASSERT_TRUE(Start());
  for (const Drawn& drawn : Draw()) EXPECT_EQ(drawn.parameters[0], 0);
  renderer->Configure({kRgba, 64, 48, 1});
  ASSERT_TRUE(renderer->CreateOutputTextures());
  for (const Drawn& drawn : Draw()) EXPECT_EQ(drawn.parameters[0], 1);
}

TEST_F(LayerStateTest, TheLeftEyeIsDrawnFirst) {
  ASSERT_TRUE(Start());
  const auto draws = Draw();
  EXPECT_LT(draws[0].viewport.TopLeftX, draws[1].viewport.TopLeftX);
}

TEST_F(LayerStateTest, AClearedOutputIsBoundAndOpaqueBlack) {
  ASSERT_TRUE(Start());
  const auto target = Draw(kWhole, 1)[0].target;
  calls.Clear();
  renderer->ClearOutput(1);
  const auto bound = calls.Of<TargetsBound>();
  const auto cleared = calls.Of<Cleared>();
  ASSERT_THAT(bound, SizeIs(1));
  ASSERT_THAT(cleared, SizeIs(1));
  EXPECT_THAT(bound[0].views, ElementsAre(target));
  EXPECT_EQ(cleared[0].view, target);
  EXPECT_THAT(cleared[0].colour, ElementsAre(0.0F, 0.0F, 0.0F, 1.0F));
}

}  // namespace
}  // namespace ombrel::test
