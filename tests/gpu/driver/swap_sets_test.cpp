#include <future>
#include <set>

#include "direct_fixture.h"
#include "sharing/counters.h"

namespace ombrel::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class SwapSetsTest : public DirectTest {
 protected:
  void SetUp() override {
    Init();
    Activate();
    calls.Clear();
  }
  // What of a set is there.
  int CountOpen(const SwapSet& set) {
    int open = 0;
    for (const auto handle : set) open += application.CanOpen(handle) ? 1 : 0;
    return open;
  }
  static std::int64_t LiveViews() { return bench::ReadCounters(bench::DeviceGroup::kIntercepted).liveViews; }
};

TEST_F(SwapSetsTest, ASetIsThreeTexturesAsAskedFor) {
  const SwapSet set = CreateSwapSet(77, 321, 123, DXGI_FORMAT_B8G8R8A8_TYPELESS);
  EXPECT_THAT(std::set(set.begin(), set.end()), SizeIs(3));
  const auto made = calls.Of<TextureMade>();
  ASSERT_THAT(made, SizeIs(3));
  for (const auto& [desc] : made) {
    EXPECT_EQ(desc.Width, 321u);
    EXPECT_EQ(desc.Height, 123u);
    EXPECT_EQ(desc.Format, 90);
    EXPECT_EQ(desc.MipLevels, 1u);
    EXPECT_EQ(desc.ArraySize, 1u);
    EXPECT_EQ(desc.SampleDesc.Count, 1u);
    EXPECT_EQ(desc.SampleDesc.Quality, 0u);
    EXPECT_EQ(desc.Usage, D3D11_USAGE_DEFAULT);
    EXPECT_EQ(desc.BindFlags, 0x28u);
    EXPECT_EQ(desc.CPUAccessFlags, 0u);
    EXPECT_EQ(desc.MiscFlags, 2u);
  }
}

TEST_F(SwapSetsTest, EveryTextureIsRegisteredInOrder) {
  const SwapSet set = CreateSwapSet();
  const auto opened = calls.Of<Opened>();
  ASSERT_THAT(opened, SizeIs(3));
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(opened[i].handle, set[i]);
  EXPECT_THAT(calls.Of<SourceViewMade>(), SizeIs(3));
}

TEST_F(SwapSetsTest, TheRuntimeCanOpenEachTexture) {
  const SwapSet set = CreateSwapSet(1, 100, 50);
  for (const auto handle : set) {
    const auto desc = application.Describe(handle);
    EXPECT_EQ(desc.Width, 100u);
    EXPECT_EQ(desc.Height, 50u);
  }
}

TEST_F(SwapSetsTest, ACreationIsLogged) {
  CreateSwapSet(1, 500, 600, DXGI_FORMAT_R8G8B8A8_UNORM, 1);
  EXPECT_TRUE(runtime.Log().Contains("Create swap requested, w: 500, h: 600, format: 28 samples: 1 \n"));
}

TEST_F(SwapSetsTest, AnyHandleOfASetRemovesTheWholeSetAndNoOther) {
  const SwapSet other = CreateSwapSet();
  for (std::size_t which = 0; which < 3; ++which) {
    const SwapSet set = CreateSwapSet();
    const auto views = LiveViews();
    Direct().DestroySwapTextureSet(set[which]);
    EXPECT_EQ(CountOpen(set), 0);
    EXPECT_EQ(CountOpen(other), 3);
    EXPECT_EQ(LiveViews(), views - 3);
  }
}

TEST_F(SwapSetsTest, ADestructionIsLogged) {
  const SwapSet set = CreateSwapSet();
  Direct().DestroySwapTextureSet(set[1]);
  EXPECT_TRUE(runtime.Log().Contains("Destroy set: " + std::to_string(static_cast<std::int32_t>(set[1])) + "\n"));
}

TEST_F(SwapSetsTest, AnUnknownHandleRemovesNothing) {
  const SwapSet set = CreateSwapSet();
  const auto views = LiveViews();
  Direct().DestroySwapTextureSet(0x7777);
  Direct().DestroySwapTextureSet(0);
  EXPECT_EQ(CountOpen(set), 3);
  EXPECT_EQ(LiveViews(), views);
}

TEST_F(SwapSetsTest, ASetCanBeDestroyedOnlyOnce) {
  const SwapSet first = CreateSwapSet();
  Direct().DestroySwapTextureSet(first[0]);
  const SwapSet second = CreateSwapSet();
  Direct().DestroySwapTextureSet(first[0]);
  EXPECT_EQ(CountOpen(second), 3);
}

TEST_F(SwapSetsTest, AllSetsOfAProcessGoTogether) {
  const SwapSet first = CreateSwapSet(10), other = CreateSwapSet(11), second = CreateSwapSet(10);
  const auto lines = runtime.Log().Lines().size();
  Direct().DestroyAllSwapTextureSets(10);
  EXPECT_EQ(CountOpen(first) + CountOpen(second), 0);
  EXPECT_EQ(CountOpen(other), 3);
  EXPECT_EQ(runtime.Log().Lines().size(), lines);
}

TEST_F(SwapSetsTest, AProcessWithoutSetsLosesNothing) {
  const SwapSet set = CreateSwapSet(10);
  Direct().DestroyAllSwapTextureSets(12);
  EXPECT_EQ(CountOpen(set), 3);
}

TEST_F(SwapSetsTest, SetsOfOthersMayComeAndGoWhileFramesFlow) {
  Connect();
  const auto eye = MakeEye(kGreen);
  auto others = std::async(std::launch::async, [this] {
    for (std::size_t i = 0; i < 30; ++i) Direct().DestroySwapTextureSet(CreateSwapSet(5)[i % 3]);
  });
  do {
    SubmitLayer(eye, PoseNumber(1));
    ASSERT_TRUE(HandOver());
  } while (others.wait_for(milliseconds(0)) != std::future_status::ready);
  const auto draws = calls.Of<Drawn>();
  EXPECT_NE(draws[0].view, nullptr);
  for (const Drawn& drawn : draws) EXPECT_EQ(drawn.view, draws[0].view);
}

TEST_F(SwapSetsTest, TexturesThatCannotBeMadeAreLeftOut) {
  calls.Fail(bench::DeviceCall::kCreateTexture2D, E_OUTOFMEMORY);
  const SwapSet failed = CreateSwapSet();
  calls.Allow(bench::DeviceCall::kCreateTexture2D);
  EXPECT_THAT(failed, Each(0u));
  EXPECT_THAT(calls.Of<Opened>(), IsEmpty());
  const SwapSet set = CreateSwapSet();
  EXPECT_THAT(set, Each(Not(0u)));
  Direct().DestroySwapTextureSet(0);
  EXPECT_EQ(CountOpen(set), 3);
}

TEST_F(SwapSetsTest, EachIndexMovesOnByOneOfThreeWithoutALookAtTheHandles) {
  std::uint32_t indices[2]{2, 0};
  Direct().GetNextSwapTextureSetIndex(nullptr, &indices);
  EXPECT_THAT(indices, ElementsAre(0, 1));
  Direct().GetNextSwapTextureSetIndex(nullptr, &indices);
  EXPECT_THAT(indices, ElementsAre(1, 2));
  Direct().GetNextSwapTextureSetIndex(nullptr, &indices);
  EXPECT_THAT(indices, ElementsAre(2, 0));
}

TEST_F(SwapSetsTest, FrameTimingIsTakenInAndNotTold) {
  vr::DriverDirectMode_FrameTiming timing{20, 11, 12, 13, 14};
  Direct().Present(0);
  Direct().GetFrameTiming(&timing);
  EXPECT_EQ(timing.m_nSize, 20u);
  EXPECT_EQ(timing.m_nNumFramePresents, 11u);
  EXPECT_EQ(timing.m_nNumMisPresented, 12u);
  EXPECT_EQ(timing.m_nNumDroppedFrames, 13u);
  EXPECT_EQ(timing.m_nReprojectionFlags, 14u);
}

}  // namespace
}  // namespace ombrel::test
