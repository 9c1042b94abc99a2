#include <openvr_driver.h>

#include <string>
#include <vector>

#include "context/driver_log.h"
#include "renderer_fixture.h"
#include "sharing/counters.h"
#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

using bench::DeviceCall;
using testing::ElementsAre;
using testing::SizeIs;

class LostDeviceTest : public RendererTest {
 protected:
  LostDeviceTest() { SetLogSinkIfNone(&log); }
  ~LostDeviceTest() override { ClearLogSink(); }
  void SetUp() override { ASSERT_TRUE(Start()); }

  void Lose() {
    calls.Fail(DeviceCall::kGetDeviceRemovedReason, DXGI_ERROR_DEVICE_RESET);
    ASSERT_TRUE(renderer->IsDeviceLost());
    calls.Allow(DeviceCall::kGetDeviceRemovedReason);
  }
  std::vector<const void*> ViewsDrawn(std::uint64_t eye) {
    calls.Clear();
    Compose(eye, eye);
    std::vector<const void*> views;
    for (const Drawn& drawn : calls.Of<Drawn>()) views.push_back(drawn.view);
    return views;
  }
  static bench::Counters Live() { return bench::ReadCounters(bench::DeviceGroup::kIntercepted); }

  struct KeptLog : vr::IVRDriverLog {
    void Log(const char* message) override { lines.emplace_back(message); }
    std::vector<std::string> lines;
  } log;
};

TEST_F(LostDeviceTest, IsKnownByItsReasonAlone) {
  for (const DeviceCall call : {DeviceCall::kCreateTexture2D, DeviceCall::kMap, DeviceCall::kAcquireSync}) {
    calls.Fail(call, DXGI_ERROR_DEVICE_REMOVED);
  }
  EXPECT_FALSE(renderer->CreateOutputTextures());
  EXPECT_FALSE(renderer->IsDeviceLost());
  calls.Fail(DeviceCall::kGetDeviceRemovedReason, DXGI_ERROR_DEVICE_HUNG);
  EXPECT_TRUE(renderer->IsDeviceLost());
}

TEST_F(LostDeviceTest, StaysLostUntilItIsMadeAnewAndIsLoggedOnce) {
  Lose();
  EXPECT_TRUE(renderer->IsDeviceLost());
  calls.Fail(DeviceCall::kCreateDevice, E_FAIL);
  EXPECT_FALSE(renderer->RemakeDevice());
  EXPECT_TRUE(renderer->IsDeviceLost());
  calls.Allow(DeviceCall::kCreateDevice);
  EXPECT_TRUE(renderer->RemakeDevice());
  EXPECT_FALSE(renderer->IsDeviceLost());
  EXPECT_THAT(log.lines, ElementsAre("Graphics device lost, reason: -2005270521\n", "Graphics device made anew\n"));
}

TEST_F(LostDeviceTest, IsNotOneThatWasNeverThere) {
  calls.Fail(DeviceCall::kCreateDevice, E_FAIL);
  renderer = MakeHeadsetRenderer();
  renderer->CreateDevice();
  EXPECT_FALSE(renderer->IsDeviceLost());
}

TEST_F(LostDeviceTest, LeavesNothingBehindButTheRuntimesTextures) {
  const auto eye = MakeEyeTexture();
  ViewsDrawn(eye);
  const auto before = Live();
  Lose();
  ASSERT_TRUE(renderer->RemakeDevice());
  EXPECT_EQ(Live().liveDevices, 2);  // the textures keep theirs
  EXPECT_EQ(Live().liveTextures, before.liveTextures);
  EXPECT_EQ(Live().liveBuffers, before.liveBuffers);
  EXPECT_EQ(Live().liveViews, 2) << "of the new outputs";
  eyeTextures.clear();
  EXPECT_EQ(Live().liveDevices, 1);
}

TEST_F(LostDeviceTest, LeavesNothingBehindWhileThereIsNoOther) {
  ViewsDrawn(MakeEyeTexture());
  eyeTextures.clear();
  Lose();
  calls.Fail(DeviceCall::kCreateDevice, E_FAIL);
  EXPECT_FALSE(renderer->RemakeDevice());
  EXPECT_EQ(Live().liveShaders, 0);
  EXPECT_EQ(Live().liveStates, 0);
  EXPECT_EQ(Live().liveBuffers, 0);
  EXPECT_EQ(Live().liveViews, 0);
  EXPECT_EQ(Live().liveDevices, 0);
}

TEST_F(LostDeviceTest, TexturesOfTheNewDeviceAreDrawnAndThoseOfTheOldOneAreUnknown) {
  const auto before = MakeEyeTexture();
  Lose();
  ASSERT_TRUE(renderer->RemakeDevice());
  EXPECT_THAT(ViewsDrawn(before), ElementsAre(nullptr, nullptr));
  const auto after = MakeEyeTexture();
  EXPECT_THAT(ViewsDrawn(after), testing::Each(testing::NotNull()));
  renderer->UnregisterTexture(before);
}

TEST_F(LostDeviceTest, ATextureThatIsRegisteredMeanwhileLeavesNoViewOfTheOldDevice) {
  struct RemakesInBetween : bench::DeviceObserver {
    explicit RemakesInBetween(IHeadsetRenderer& remade) : renderer(remade) {
      bench::SetObserver(bench::DeviceGroup::kIntercepted, this);
    }
    void OnCreateShaderResourceView(ID3D11Resource*, const D3D11_SHADER_RESOURCE_VIEW_DESC*) override {
      EXPECT_TRUE(renderer.RemakeDevice());
    }
    IHeadsetRenderer& renderer;
  };
  const SwapTexture swap = renderer->CreateSwapTexture({64, 48, kRgba, 1});
  {
    RemakesInBetween observer(*renderer);
    renderer->RegisterTexture(swap.handle);
    bench::SetObserver(bench::DeviceGroup::kIntercepted, &calls);
  }
  EXPECT_THAT(ViewsDrawn(swap.handle), ElementsAre(nullptr, nullptr));
}

TEST_F(LostDeviceTest, IsNotMadeAnewByHalves) {
  Lose();
  for (const DeviceCall call : {DeviceCall::kCreatePixelShader, DeviceCall::kCreateTexture2D, DeviceCall::kCreateBuffer,
                                DeviceCall::kCreateBlendState, DeviceCall::kCreateSamplerState}) {
    calls.Fail(call, E_OUTOFMEMORY);
    EXPECT_FALSE(renderer->RemakeDevice()) << static_cast<int>(call);
    EXPECT_TRUE(renderer->IsDeviceLost());
    calls.Allow(call);
  }
  EXPECT_TRUE(renderer->RemakeDevice());
  EXPECT_THAT(log.lines, SizeIs(2));
}

TEST_F(LostDeviceTest, IsMadeAnewWithoutAnOutputWhenThereWasNone) {
  renderer = MakeHeadsetRenderer();
  renderer->CreateDevice();
  Lose();
  EXPECT_TRUE(renderer->RemakeDevice());
  EXPECT_FALSE(renderer->IsReady());
}

}  // namespace
}  // namespace ombrel::test
