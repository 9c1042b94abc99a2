#include <chrono>
#include <future>
#include <utility>

#include "renderer_fixture.h"
#include "sharing/counters.h"

namespace ombrel::test {
namespace {

using testing::SizeIs;

class RuntimeTexturesTest : public RendererTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Start());
    calls.Clear();
  }

  // What the eyes of a layer with these textures are drawn from.
  std::vector<const void*> ViewsDrawn(std::uint64_t left, std::uint64_t right) {
    calls.Clear();
    Compose(left, right);
    std::vector<const void*> views;
    for (const Drawn& drawn : calls.Of<Drawn>()) views.push_back(drawn.view);
    return views;
  }

  static std::int64_t LiveViews() { return bench::ReadCounters(bench::DeviceGroup::kIntercepted).liveViews; }
};

TEST_F(RuntimeTexturesTest, AreMadeAsAskedFor) {
  EXPECT_NE(renderer->CreateSwapTexture({500, 600, kRgbaTypeless, 1}).handle, 0u);
  const auto made = calls.Of<TextureMade>();
  ASSERT_EQ(made.size(), 1u);
  ExpectTexture(made[0].desc, 500, 600, 27, 0x2);  // the format rule is for views
}

TEST_F(RuntimeTexturesTest, AreAskedForWithTheSamplesWanted) {
  static_cast<void>(renderer->CreateSwapTexture({64, 48, kRgba, 4}));
  const auto made = calls.Of<TextureMade>();
  ASSERT_EQ(made.size(), 1u);
  EXPECT_EQ(made[0].desc.SampleDesc.Count, 4u);
  EXPECT_EQ(made[0].desc.SampleDesc.Quality, 0u);
}

TEST_F(RuntimeTexturesTest, LiveAsLongAsTheirOwnerKeepsThem) {
  SwapTexture texture = renderer->CreateSwapTexture({64, 48, kRgba, 1});
  EXPECT_TRUE(runtime.CanOpen(texture.handle));
  texture.texture.reset();
  EXPECT_FALSE(runtime.CanOpen(texture.handle));
}

TEST_F(RuntimeTexturesTest, AreSeenInTheFormatThatTheRuleGives) {
  for (const auto& [given, used] : {std::pair{1, 2},
                                    {9, 11},
                                    {27, 28},
                                    {90, 91},
                                    {92, 93},  // made typed
                                    {23, 23},
                                    {28, 28},
                                    {29, 29},
                                    {87, 87},
                                    {10, 10}}) {  // left alone
    SCOPED_TRACE(given);
    calls.Clear();
    MakeEyeTexture({}, static_cast<std::uint32_t>(given));
    const auto made = calls.Of<SourceViewMade>();
    ASSERT_THAT(made, SizeIs(1));
    EXPECT_EQ(made[0].desc.Format, used);
    EXPECT_EQ(made[0].desc.ViewDimension, D3D11_SRV_DIMENSION_TEXTURE2D);
    EXPECT_EQ(made[0].desc.Texture2D.MostDetailedMip, 0u);
    EXPECT_EQ(made[0].desc.Texture2D.MipLevels, 1u);
  }
}

TEST_F(RuntimeTexturesTest, AreDrawnFromTheirOwnViews) {
  const auto left = MakeEyeTexture(), right = MakeEyeTexture();
  const auto views = ViewsDrawn(left, right);
  ASSERT_THAT(views, SizeIs(2));
  EXPECT_NE(views[0], nullptr);
  EXPECT_NE(views[1], nullptr);
  EXPECT_NE(views[0], views[1]);
  EXPECT_EQ(ViewsDrawn(right, left), (std::vector{views[1], views[0]}));
}

TEST_F(RuntimeTexturesTest, ThatAreUnknownAreDrawnFromNoView) {
  const auto known = MakeEyeTexture();
  const auto views = ViewsDrawn(0x7777, known);
  ASSERT_THAT(views, SizeIs(2));
  EXPECT_EQ(views[0], nullptr);
  EXPECT_NE(views[1], nullptr);
}

TEST_F(RuntimeTexturesTest, RegisteredAgainKeepTheirView) {
  const auto handle = MakeEyeTexture();
  const auto before = ViewsDrawn(handle, handle);
  const auto live = LiveViews();
  renderer->RegisterTexture(handle);
  EXPECT_EQ(ViewsDrawn(handle, handle), before);
  EXPECT_EQ(LiveViews(), live);
}

TEST_F(RuntimeTexturesTest, HaveNoViewOnceUnregistered) {
  const auto handle = MakeEyeTexture(), other = MakeEyeTexture();
  const auto live = LiveViews();
  renderer->UnregisterTexture(handle);
  EXPECT_EQ(LiveViews(), live - 1);
  const auto views = ViewsDrawn(handle, other);
  EXPECT_EQ(views[0], nullptr);
  EXPECT_NE(views[1], nullptr);
}

TEST_F(RuntimeTexturesTest, ThatAreUnknownCanBeUnregistered) {
  const auto handle = MakeEyeTexture();
  renderer->UnregisterTexture(handle + 1);
  EXPECT_NE(ViewsDrawn(handle, handle)[0], nullptr);
}

TEST_F(RuntimeTexturesTest, ThatCannotBeOpenedGetNoView) {
  renderer->RegisterTexture(0x7777);
  EXPECT_THAT(calls.Of<SourceViewMade>(), SizeIs(0));
  EXPECT_EQ(ViewsDrawn(0x7777, 0x7777)[0], nullptr);
}

// A success that gives nothing.
TEST_F(RuntimeTexturesTest, ThatOpenAsNothingGetNoView) {
  const SwapTexture swap = renderer->CreateSwapTexture({64, 48, kRgba, 1});
  calls.Fail(bench::DeviceCall::kOpenSharedResource, S_FALSE);
  renderer->RegisterTexture(swap.handle);
  EXPECT_THAT(calls.Of<SourceViewMade>(), SizeIs(0));
}

TEST_F(RuntimeTexturesTest, AreDrawnAndPassedOnWithoutMakingAnyObject) {
  const auto handle = MakeEyeTexture();
  calls.Clear();
  for (int frame = 0; frame < 3; ++frame) {
    Compose(handle, handle, kWhole, frame % 2);
    renderer->ClearOutput(frame % 2);
  }
  for (const RecordedCall& call : calls.All()) {
    EXPECT_FALSE(std::holds_alternative<TextureMade>(call) || std::holds_alternative<SourceViewMade>(call) ||
                 std::holds_alternative<TargetViewMade>(call) || std::holds_alternative<BufferMade>(call) ||
                 std::holds_alternative<BlendMade>(call) || std::holds_alternative<SamplerMade>(call));
  }
}

TEST_F(RuntimeTexturesTest, ComeAndGoWhileAFrameIsBeingDrawn) {
  const auto drawnFrom = MakeEyeTexture();
  const SwapTexture newcomer = renderer->CreateSwapTexture({64, 48, kRgba, 1});
  const auto live = LiveViews();
  std::promise<void> drawing, goOn;
  calls.onDraw = [&, isFirst = true]() mutable {
    if (!std::exchange(isFirst, false)) return;
    drawing.set_value();
    goOn.get_future().wait();
  };
  auto frame = std::async(std::launch::async, [&] { Compose(drawnFrom, drawnFrom); });
  drawing.get_future().wait();
  auto changes = std::async(std::launch::async, [&] {
    renderer->RegisterTexture(newcomer.handle);
    renderer->UnregisterTexture(drawnFrom);
  });
  EXPECT_EQ(changes.wait_for(std::chrono::seconds(5)), std::future_status::ready) << "they wait for the frame";
  EXPECT_EQ(LiveViews(), live + 1) << "the frame has lost its view";
  goOn.set_value();
  frame.get();
  changes.get();
  for (const Drawn& drawn : calls.Of<Drawn>()) EXPECT_NE(drawn.view, nullptr);
  EXPECT_NE(ViewsDrawn(newcomer.handle, newcomer.handle)[0], nullptr);
  EXPECT_EQ(LiveViews(), live) << "the view outlives its last frame";
}

TEST_F(RuntimeTexturesTest, ComeAndGoOnThreadsOfTheRuntime) {
  constexpr int kThreads = 4, kTimes = 1500;
  const auto live = LiveViews();
  for (int i = 0; i < kThreads; ++i) eyeTextures.push_back(renderer->CreateSwapTexture({64, 48, kRgba, 1}));
  std::vector<std::future<void>> threads;
  for (const SwapTexture& texture : eyeTextures) {
    threads.push_back(std::async(std::launch::async, [this, handle = texture.handle] {
      for (int i = 0; i < kTimes; ++i) {
        renderer->RegisterTexture(handle);
        renderer->UnregisterTexture(handle);
      }
      renderer->RegisterTexture(handle);
    }));
  }
  for (std::future<void>& thread : threads) thread.get();
  EXPECT_EQ(LiveViews(), live + kThreads);
  for (const SwapTexture& texture : eyeTextures) EXPECT_NE(ViewsDrawn(texture.handle, texture.handle)[0], nullptr);
}

TEST_F(RuntimeTexturesTest, OutliveTheOutputBeingMadeAnew) {
  const auto handle = MakeEyeTexture();
  const auto before = ViewsDrawn(handle, handle);
  ASSERT_TRUE(renderer->CreateOutputTextures());
  EXPECT_EQ(ViewsDrawn(handle, handle), before);
}

}  // namespace
}  // namespace ombrel::test
