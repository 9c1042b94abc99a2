#include "render/virtual_display_component.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "runtime/fake_runtime.h"
#include "stopped_component.h"
#include "support/background.h"
#include "support/fake_companion.h"
#include "support/fake_renderer.h"

namespace ombrel::test {
namespace {

class ConcreteVirtualDisplay final : public VirtualDisplayComponent {
 public:
  using VirtualDisplayComponent::VirtualDisplayComponent;
};

class VirtualDisplayComponentTest : public testing::Test {
 protected:
  ~VirtualDisplayComponentTest() override { core_.StopLink(); }

  void Present(std::uint64_t texture) {
    vr::PresentInfo_t info{};
    info.backbufferTextureHandle = texture;
    component_.Present(&info, sizeof(info));
  }
  std::uint64_t Frames() {
    float seconds = -1.0F;
    std::uint64_t frames = 99;
    EXPECT_TRUE(component_.GetTimeSinceLastVsync(&seconds, &frames));
    return frames;
  }
  float SecondsSinceVsync() {
    float seconds = -1.0F;
    std::uint64_t frames = 99;
    EXPECT_TRUE(component_.GetTimeSinceLastVsync(&seconds, &frames));
    return seconds;
  }

  FakeCompanion companion_;
  bench::FakeRuntime runtime_;
  std::unique_ptr<FakeRenderer> made_ = std::make_unique<FakeRenderer>();
  FakeRenderer* renderer_ = made_.get();
  OmbrelCore core_{std::move(made_)};
  ConcreteVirtualDisplay component_{core_, &runtime_.Host()};
};

TEST_F(VirtualDisplayComponentTest, CountsNoFramesAtFirstAndAnswersBeforeAnyWait) {
  EXPECT_EQ(Frames(), 0U);
  EXPECT_GT(SecondsSinceVsync(), 0.0F);
}

TEST_F(VirtualDisplayComponentTest, CountsEachPresentWithTheLinkDownToo) {
  Present(5);
  Present(6);
  EXPECT_EQ(Frames(), 2U);
}

TEST_F(VirtualDisplayComponentTest, CountsAPresentWhoseTextureCouldNotBeHad) {
  renderer_->canCopy = false;
  core_.PrepareOutput({.format = 28, .width = 100, .height = 100, .invertY = 0});
  core_.SetUp();
  core_.StartLink();
  ASSERT_TRUE(companion_.Connect());
  std::uint64_t presents = 0;
  ASSERT_TRUE(WaitUntil([&] {
    Present(5);
    ++presents;
    return renderer_->journal.Count("CopyToOutput 5 0 16") > 0;
  }));
  EXPECT_EQ(Frames(), presents);
}

TEST_F(VirtualDisplayComponentTest, TellsOfAVsyncBehindEachWait) {
  component_.WaitForPresent();
  component_.WaitForPresent();
  const auto vsyncs = runtime_.Journal().EntriesOf("IVRServerDriverHost.VsyncEvent");
  ASSERT_EQ(vsyncs.size(), 2U);
  for (const auto& vsync : vsyncs) EXPECT_EQ(vsync.arguments.at("offset"), 0.0);
  EXPECT_EQ(Frames(), 0U);
}

TEST_F(VirtualDisplayComponentTest, HasNotedTheVsyncWhenItTellsOfIt) {
  const auto begin = std::chrono::steady_clock::now();
  float seconds = -1.0F;
  runtime_.Host().onVsync = [&] { seconds = SecondsSinceVsync(); };
  component_.WaitForPresent();
  const std::chrono::duration<float> sinceBegin = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(seconds, 0.0F);
  EXPECT_LT(seconds, sinceBegin.count()) << "not since the counter began";
}

TEST_F(VirtualDisplayComponentTest, PacesTheRuntimeToTheFramePeriod) {
  component_.WaitForPresent();
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < 4; ++i) component_.WaitForPresent();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::microseconds(4 * 16'600));
}

TEST_F(VirtualDisplayComponentTest, DoesNothingOnceTheLinkHasStopped) {
  Present(5);
  core_.StopLink();
  Present(6);
  component_.WaitForPresent();
  EXPECT_EQ(runtime_.Host().VsyncEvents(), 0U);
  EXPECT_EQ(Frames(), 0U) << "what it has counted is no longer told";
  EXPECT_EQ(SecondsSinceVsync(), 0.0F);
}

// The component is destroyed right after the stop. No hook holds up what a call still does after the hand-off or the
// wait: a use-after-free there is the thread sanitizer's to find, in this test and the next two.
TEST_F(VirtualDisplayComponentTest, APresentHasLeftTheComponentWhenTheLinkHasStopped) {
  auto component = std::make_unique<ConcreteVirtualDisplay>(core_, &runtime_.Host());
  core_.PrepareOutput({.format = 28, .width = 100, .height = 100, .invertY = 0});
  core_.SetUp();
  core_.StartLink();
  ASSERT_TRUE(companion_.Connect());
  Background runtime([this, display = component.get()] {
    vr::PresentInfo_t info{};
    info.backbufferTextureHandle = 5;
    while (renderer_->journal.Count("CopyToOutput 5 0 16") == 0) display->Present(&info, sizeof(info));
  });
  ASSERT_TRUE(renderer_->journal.WaitForLine("AcquireOutput 1 16"));
  ASSERT_TRUE(runtime.StaysBlocked()) << "it waits for a pose";
  core_.StopLink();
  component.reset();
  EXPECT_TRUE(runtime.Finishes());
}

TEST_F(VirtualDisplayComponentTest, AWaitHasLeftTheComponentWhenTheLinkHasStopped) {
  auto component = std::make_unique<ConcreteVirtualDisplay>(core_, &runtime_.Host());
  core_.OnFramerateUpdated(0);
  component->WaitForPresent();
  Background runtime([display = component.get()] { display->WaitForPresent(); });
  ASSERT_TRUE(runtime.StaysBlocked());
  core_.StopLink();
  component.reset();
  EXPECT_TRUE(runtime.Finishes());
}

TEST_F(VirtualDisplayComponentTest, AnAskerHasLeftTheComponentWhenTheLinkHasStopped) {
  auto component = std::make_unique<ConcreteVirtualDisplay>(core_, &runtime_.Host());
  ExpectCallsToHaveLeft<ConcreteVirtualDisplay>(core_, std::move(component), [](ConcreteVirtualDisplay& display) {
    float seconds = -1.0F;
    std::uint64_t frames = 99;
    display.GetTimeSinceLastVsync(&seconds, &frames);
  });
}

TEST_F(VirtualDisplayComponentTest, CountsTheTimeFromTheLastVsync) {
  component_.WaitForPresent();
  const float first = SecondsSinceVsync();
  EXPECT_GE(first, 0.0F);
  EXPECT_GE(SecondsSinceVsync(), first);
  EXPECT_LT(first, 10.0F);
}

}  // namespace
}  // namespace ombrel::test
