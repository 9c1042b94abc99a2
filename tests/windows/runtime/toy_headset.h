#pragma once

#include <array>
#include <string>
#include <vector>

#include <d3d11.h>
#include <wrl/client.h>

#include "idle_driver/idle_driver.h"
#include "picture/read_image.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace bench {

// A headset with both ways of taking frames, which writes down what the compositor does with it and looks
// at the pictures with a Direct3D device of its own.
class ToyHeadset : public ombrel::test::IdleDevice,
                   public vr::IVRDisplayComponent,
                   public vr::IVRDriverDirectModeComponent,
                   public vr::IVRVirtualDisplay {
 public:
  static constexpr std::uint32_t kWidth = 16;
  static constexpr std::uint32_t kHeight = 8;

  ToyHeadset() { RequireOk(CreateSharingDevice(&device, &context), "making the driver's device"); }

  void* GetComponent(const char* name) override;

  void GetWindowBounds(int32_t* x, int32_t* y, uint32_t* width, uint32_t* height) override;
  bool IsDisplayOnDesktop() override { return false; }
  bool IsDisplayRealDisplay() override { return false; }
  void GetRecommendedRenderTargetSize(uint32_t* width, uint32_t* height) override {
    *width = kWidth;
    *height = kHeight;
  }
  void GetEyeOutputViewport(vr::EVREye eye, uint32_t* x, uint32_t* y, uint32_t* width, uint32_t* height) override;
  void GetProjectionRaw(vr::EVREye, float* left, float* right, float* top, float* bottom) override {
    *left = *top = -1;
    *right = *bottom = 1;
  }
  vr::DistortionCoordinates_t* ComputeDistortion(vr::DistortionCoordinates_t* result, vr::EVREye, float,
                                                 float) override {
    return result;
  }

  void CreateSwapTextureSet(uint32_t, const SwapTextureSetDesc_t* desc,
                            vr::SharedTextureHandle_t (*handles)[3]) override;
  void DestroySwapTextureSet(vr::SharedTextureHandle_t handle) override { destroyed.push_back(handle); }
  void GetNextSwapTextureSetIndex(vr::SharedTextureHandle_t[2], uint32_t (*indices)[2]) override {
    calls.push_back("GetNextSwapTextureSetIndex");
    (*indices)[0] = ((*indices)[0] + 1) % 3;
    (*indices)[1] = ((*indices)[1] + 1) % 3;
  }
  void SubmitLayer(const SubmitLayerPerEye_t (&perEye)[2], const vr::HmdMatrix34_t* pose) override {
    calls.push_back("SubmitLayer");
    layer = {perEye[0], perEye[1]};
    submittedPose = *pose;
  }
  void Present(vr::SharedTextureHandle_t sync) override {
    calls.push_back("Present");
    syncWasFree = TryHold(sync);
    colours.push_back({CentreOf(layer[0].hTexture), CentreOf(layer[1].hTexture)});
  }
  void PostPresent() override { calls.push_back("PostPresent"); }
  void GetFrameTiming(vr::DriverDirectMode_FrameTiming* timing) override {
    calls.push_back("GetFrameTiming");
    timingSize = timing->m_nSize;
  }

  void Present(const vr::PresentInfo_t* info, uint32_t size) override {
    calls.push_back("Present");
    presentSize = size;
    presentInfo = *info;
    backbuffer = ReadShared(info->backbufferTextureHandle);
  }
  void WaitForPresent() override { calls.push_back("WaitForPresent"); }
  bool GetTimeSinceLastVsync(float* seconds, uint64_t* counter) override {
    calls.push_back("GetTimeSinceLastVsync");
    *seconds = 0.0F;
    *counter = 0;
    return true;
  }

  std::vector<std::string> calls;
  std::vector<SwapTextureSetDesc_t> descriptions;
  std::vector<std::pair<vr::SharedTextureHandle_t, Microsoft::WRL::ComPtr<ID3D11Texture2D>>> swapTextures;
  std::vector<vr::SharedTextureHandle_t> destroyed;
  std::array<SubmitLayerPerEye_t, 2> layer{};
  vr::HmdMatrix34_t submittedPose{};
  std::vector<std::array<Rgba, 2>> colours;
  Image backbuffer;
  vr::PresentInfo_t presentInfo{};
  std::uint32_t presentSize = 0;
  std::uint32_t timingSize = 0;
  bool syncWasFree = false;

 private:
  Microsoft::WRL::ComPtr<ID3D11Texture2D> CreateTexture(const SwapTextureSetDesc_t& desc);
  Rgba CentreOf(vr::SharedTextureHandle_t handle);
  Microsoft::WRL::ComPtr<ID3D11Texture2D> Open(vr::SharedTextureHandle_t handle);
  bool TryHold(vr::SharedTextureHandle_t handle);
  Image ReadShared(vr::SharedTextureHandle_t handle);

  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
};

}  // namespace bench
