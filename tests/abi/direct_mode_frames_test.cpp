// The frame path of IVRDriverDirectModeComponent, called as MSVC lays it out, while a companion takes frames: what
// SubmitLayer, Present and DestroyAllSwapTextureSets do shows at the companion's side and in the runtime's textures.
#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <gmock/gmock.h>
#include <wrl/client.h>

#include "companion/shared_block.h"
#include "msvc_side/calls.h"
#include "sharing/sharing_device.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using Microsoft::WRL::ComPtr;

constexpr float kPose[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

class DirectModeFramesTest : public LinkTest {
 protected:
  DirectModeFramesTest() : LinkTest(Graphics::kReal) {}

  void SetUp() override {
    ASSERT_TRUE(bench::InterceptModule(static_cast<HMODULE>(module.Handle())));
    Connect();
    direct = MsvcDeviceGetComponent(&Headset(), "IVRDriverDirectModeComponent_005");
    ASSERT_NE(direct, nullptr);
  }

  // Submits and presents until the driver hands a frame over, which the first announcement shows.
  std::optional<companion::FrameSharingInfo> PresentFirstFrame(bool withLayer) {
    std::optional<companion::ReceivedMessage> message;
    for (int attempt = 0; attempt < 500 && !message; ++attempt) {
      if (withLayer) MsvcDirectSubmitLayer(direct, 1, 2, &kPose);
      MsvcDirectPresent(direct, 0);
      message = server.Next(20);
    }
    return message ? companion::DecodeFrameSharingInfo(message->message.payload) : std::nullopt;
  }

  [[nodiscard]] static bool CanOpen(std::uint64_t handle) {
    ComPtr<ID3D11Device> device;
    ComPtr<ID3D11DeviceContext> context;
    if (bench::CreateSharingDevice(&device, &context) != S_OK) return false;
    ComPtr<ID3D11Texture2D> texture;
    return device->OpenSharedResource(reinterpret_cast<HANDLE>(handle), IID_PPV_ARGS(&texture)) == S_OK;
  }

  void* direct = nullptr;
};

TEST_F(DirectModeFramesTest, PresentHandsAFrameOver) {
  const auto info = PresentFirstFrame(false);
  ASSERT_TRUE(info.has_value());
  EXPECT_EQ(info->processId, GetCurrentProcessId());
}

TEST_F(DirectModeFramesTest, SubmitLayerBringsThePoseOfTheFrame) {
  const auto info = PresentFirstFrame(true);
  ASSERT_TRUE(info.has_value());
  companion::SharedBlock block;
  ASSERT_TRUE(block.Open(info->name));
  EXPECT_THAT(block.ReadSlot(0), testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0, 1));
}

TEST_F(DirectModeFramesTest, CreateSwapTextureSetFillsAllThreeHandles) {
  std::uint64_t handles[3] = {};
  MsvcDirectCreateSet(direct, 77, 64, 64, 28, 1, &handles);
  EXPECT_THAT(handles, testing::Each(testing::Ne(0U)));
  for (const std::uint64_t handle : handles) EXPECT_TRUE(CanOpen(handle));
}

TEST_F(DirectModeFramesTest, DestroySwapTextureSetEndsTheWholeSet) {
  std::uint64_t handles[3] = {};
  MsvcDirectCreateSet(direct, 77, 64, 64, 28, 1, &handles);
  MsvcDirectDestroySet(direct, handles[1]);
  for (const std::uint64_t handle : handles) EXPECT_FALSE(CanOpen(handle));
}

TEST_F(DirectModeFramesTest, DestroyAllSwapTextureSetsEndsThoseOfOneProcess) {
  std::uint64_t mine[3] = {}, others[3] = {};
  MsvcDirectCreateSet(direct, 77, 64, 64, 28, 1, &mine);
  MsvcDirectCreateSet(direct, 78, 64, 64, 28, 1, &others);
  MsvcDirectDestroyAllSets(direct, 77);
  for (const std::uint64_t handle : mine) EXPECT_FALSE(CanOpen(handle));
  for (const std::uint64_t handle : others) EXPECT_TRUE(CanOpen(handle));
}

}  // namespace
}  // namespace ombrel::test
