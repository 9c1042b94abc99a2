#include "runtime/compositor.h"

#include <array>
#include <atomic>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/clock.h"
#include "base/wait.h"
#include "runtime/direct_compositor.h"
#include "runtime/virtual_compositor.h"
#include "sharing/sharing_device.h"
#include "toy_headset.h"

namespace bench {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr Rgba kRed = {255, 0, 0, 255};
constexpr Rgba kBlue = {0, 0, 255, 255};

// Left red, right blue.
class FlatPainter : public FramePainter {
 public:
  FlatPainter(const Microsoft::WRL::ComPtr<ID3D11Device>& device, Microsoft::WRL::ComPtr<ID3D11DeviceContext> context)
      : context_(std::move(context)), colours_{Flat(*device.Get(), kRed), Flat(*device.Get(), kBlue)} {}
  void PaintEye(const EyeView& view) override {
    views.push_back(view);
    Microsoft::WRL::ComPtr<ID3D11Resource> target;
    view.target->GetResource(&target);
    context_->CopySubresourceRegion(target.Get(), 0, static_cast<UINT>(view.viewport.TopLeftX),
                                    static_cast<UINT>(view.viewport.TopLeftY), 0,
                                    colours_.at(static_cast<std::size_t>(view.eye)).Get(), 0, nullptr);
  }

  std::vector<EyeView> views;

 private:
  static Microsoft::WRL::ComPtr<ID3D11Texture2D> Flat(ID3D11Device& device, const Rgba& colour) {
    const std::vector<Rgba> pixels(std::size_t{ToyHeadset::kWidth} * ToyHeadset::kHeight, colour);
    const D3D11_SUBRESOURCE_DATA data = {pixels.data(), 4 * ToyHeadset::kWidth, 0};
    D3D11_TEXTURE2D_DESC description{};
    description.Width = ToyHeadset::kWidth;
    description.Height = ToyHeadset::kHeight;
    description.MipLevels = description.ArraySize = 1;
    description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
    RequireOk(device.CreateTexture2D(&description, &data, &texture), "making a flat texture");
    return texture;
  }

  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, 2> colours_;
};

class CompositorTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(CreateSharingDevice(&device, &context), S_OK);
    painter = std::make_unique<FlatPainter>(device, context);
    vr::CVRPropertyHelpers helpers(&runtime.Properties());
    helpers.SetFloatProperty(active.container, vr::Prop_DisplayFrequency_Float, 200.0F);
    helpers.SetFloatProperty(active.container, vr::Prop_UserIpdMeters_Float, 0.064F);
    runtime.Journal().Clear();
  }
  void SendPose(double height) {
    vr::DriverPose_t pose{};
    pose.qWorldFromDriverRotation.w = pose.qDriverFromHeadRotation.w = pose.qRotation.w = 1.0;
    pose.vecPosition[1] = height;
    runtime.Host().TrackedDevicePoseUpdated(0, pose, sizeof pose);
  }

  FakeRuntime runtime;
  ToyHeadset headset;
  ActiveDevice active{{"toy", vr::TrackedDeviceClass_HMD, &headset, true, 0}, FakeProperties::ContainerOf(0), {}};
  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  std::unique_ptr<FlatPainter> painter;
};

TEST_F(CompositorTest, DirectModeCallsInTheRuntimesOrder) {
  DirectCompositor compositor(runtime, active, *painter, device);
  headset.calls.clear();
  compositor.RunFrame();
  EXPECT_THAT(headset.calls,
              ElementsAre("GetNextSwapTextureSetIndex", "SubmitLayer", "Present", "PostPresent", "GetFrameTiming"));
  EXPECT_EQ(headset.timingSize, 20U);
  EXPECT_TRUE(headset.syncWasFree);
}

TEST_F(CompositorTest, DirectModePicturesReachTheDriversDevice) {
  DirectCompositor compositor(runtime, active, *painter, device);
  for (int frame = 0; frame < 4; ++frame) {
    compositor.RunFrame();
  }
  for (const auto& colours : headset.colours) {
    EXPECT_THAT(colours, ElementsAre(kRed, kBlue));
  }
  EXPECT_EQ(headset.colours.size(), 4U);
}

TEST_F(CompositorTest, DirectModeGoesRoundItsThreeTextures) {
  DirectCompositor compositor(runtime, active, *painter, device);
  std::vector<vr::SharedTextureHandle_t> used;
  for (int frame = 0; frame < 4; ++frame) {
    compositor.RunFrame();
    used.push_back(headset.layer[0].hTexture);
  }
  const auto handle = [&](std::size_t index) { return headset.swapTextures[index].first; };
  EXPECT_THAT(used, ElementsAre(handle(1), handle(2), handle(0), handle(1)));
}

TEST_F(CompositorTest, ThePoseThatIsSubmittedIsTheOneThatWasRendered) {
  DirectCompositor compositor(runtime, active, *painter, device);
  SendPose(1.5);
  const FrameReport report = compositor.RunFrame();
  EXPECT_FLOAT_EQ(headset.submittedPose.m[1][3], 1.5F);
  EXPECT_FLOAT_EQ(painter->views[0].worldFromEye.m[1][3], 1.5F);
  EXPECT_FLOAT_EQ(painter->views[0].worldFromEye.m[0][3], -0.032F);
  EXPECT_FLOAT_EQ(painter->views[1].worldFromEye.m[0][3], 0.032F);
  EXPECT_EQ(report.poseTicks, runtime.Poses().Latest(0)->ticks);
  EXPECT_LE(report.poseTicks, report.renderTicks);
  EXPECT_LE(report.renderTicks, report.presentTicks);
  EXPECT_LE(report.presentTicks, report.presentedTicks);
}

TEST_F(CompositorTest, VirtualModePresentsOneFinishedWindow) {
  VirtualCompositor compositor(runtime, active, *painter, device);
  compositor.RunFrame();
  EXPECT_THAT(headset.calls, ElementsAre("Present", "WaitForPresent", "GetTimeSinceLastVsync"));
  EXPECT_EQ(headset.presentSize, sizeof(vr::PresentInfo_t));
  EXPECT_EQ(headset.backbuffer.width, 2 * ToyHeadset::kWidth);
  EXPECT_EQ(headset.backbuffer.At(3, 3), kRed);
  EXPECT_EQ(headset.backbuffer.At(ToyHeadset::kWidth + 3, 3), kBlue);
  EXPECT_TRUE(painter->views[0].gammaEncoded);
}

TEST_F(CompositorTest, TheLoopNeverRunsAheadOfItsRate) {
  DirectCompositor compositor(runtime, active, *painter, device);
  std::vector<FrameReport> reports;  // read only when the loop has ended
  std::atomic<int> frames = 0;
  compositor.Listen([&](const FrameReport& report) {
    reports.push_back(report);
    ++frames;
  });
  compositor.Start(50.0);
  ASSERT_TRUE(WaitUntil([&] { return frames >= 4; }, 60s));
  compositor.RequestStop();
  ASSERT_TRUE(compositor.WaitStopped(10s));
  EXPECT_TRUE(compositor.Failure().empty());
  for (std::size_t index = 1; index < reports.size(); ++index) {
    EXPECT_EQ(reports[index].index, index);
    EXPECT_GE(reports[index].renderTicks - reports[index - 1].renderTicks, SecondsToTicks(0.0199));
  }
}

}  // namespace
}  // namespace bench
