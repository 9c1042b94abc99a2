#include <array>
#include <string>

#include "bare_frames.h"
#include "driver_under_test.h"
#include "experiments.h"
#include "frame_parts.h"
#include "runtime/keyed_texture.h"
#include "sharing/sharing_device.h"

namespace bench::speed {
namespace {

using Microsoft::WRL::ComPtr;

constexpr DXGI_FORMAT kFormat = DXGI_FORMAT_R8G8B8A8_UNORM;
constexpr std::uint32_t kProcess = 1, kOtherProcess = 2;
constexpr std::uint32_t kEyeSize = 64;  // small, so that calls count more than pixels

ComPtr<ID3D11Device> RuntimesDevice() {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  RequireOk(CreateSharingDevice(&device, &context), "making the runtime's device");
  return device;
}

// A headset in direct mode and a runtime that submits one texture for both eyes.
class LayerSession {
 public:
  explicit LayerSession(const Plan& plan)
      : driver_(plan.library, Graphics::kSharing),
        direct_(*static_cast<vr::IVRDriverDirectModeComponent*>(
            driver_.Component(vr::IVRDriverDirectModeComponent_Version))),
        eye_(AddSet(kProcess)) {}

  // Registers three textures more, of that process, and gives one of them.
  vr::SharedTextureHandle_t AddSet(std::uint32_t process) {
    const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t description{kEyeSize, kEyeSize, kFormat, 1};
    vr::SharedTextureHandle_t handles[3] = {};
    direct_.CreateSwapTextureSet(process, &description, &handles);
    return handles[0];
  }

  void DestroySets(std::uint32_t process) { direct_.DestroyAllSwapTextureSets(process); }

  void Frame(int layers) {
    vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2] = {};
    for (auto& eye : eyes) {
      eye.hTexture = eye_;
      eye.bounds = {0.0F, 0.0F, 1.0F, 1.0F};
    }
    const vr::HmdMatrix34_t pose{};
    for (int layer = 0; layer < layers; ++layer) direct_.SubmitLayer(eyes, &pose);
    direct_.Present(sync_.Handle());
  }

  // The baseline on the driver's device, once the driver takes frames.
  BareLayerFrames MakeBaseline() {
    const DriverContextFinder finder;
    RunUntil([&] { return finder.Context() != nullptr; }, [this] { Frame(1); });
    kept_ = KeepWithoutCopies(*finder.Context(), SyncTexture());
    BareLayerFrames made(*finder.Context());
    for (int i = 0; i < 2; ++i) {
      Frame(1);
      made.NoteHeldOutput();
      SkipPixels(*finder.Context());
    }
    return made;
  }

  [[nodiscard]] HANDLE SyncTexture() const { return reinterpret_cast<HANDLE>(sync_.Handle()); }

 private:
  // As for the runtime's texture.
  static void SkipPixels(ID3D11DeviceContext& context) {
    ComPtr<ID3D11RenderTargetView> view;
    ComPtr<ID3D11Resource> resource;
    ComPtr<ID3D11Texture2D> texture;
    context.OMGetRenderTargets(1, &view, nullptr);
    view->GetResource(&resource);
    RequireOk(resource.As(&texture), "finding the driver's output");
    RequireOk(MarkReadOnly(texture.Get()), "marking the driver's output");
  }

  ComPtr<ID3D11Device> device_ = RuntimesDevice();
  KeyedTexture sync_{*device_.Get(), 4, 4, kFormat};
  DriverUnderTest driver_;
  vr::IVRDriverDirectModeComponent& direct_;
  vr::SharedTextureHandle_t eye_;
  ComPtr<ID3D11Texture2D> kept_;
};

Series MeasureAgainstLayers(LayerSession& session, int blocks, int frames) {
  Series series{"layers", "µs", {}};
  for (int i = 0; i < blocks; ++i) {
    for (const int layers : {1, 2, 4, 8, 16}) {
      series.Add(std::to_string(layers), TimeFrames(frames, [&] { session.Frame(layers); }));
    }
  }
  return series;
}

Series MeasureAgainstTextures(LayerSession& session, int blocks, int frames) {
  Series series{"registered textures", "µs", {}};
  for (int i = 0; i < blocks; ++i) {
    int textures = 3;
    for (const int wanted : {3, 9, 30, 99, 300}) {
      for (; textures < wanted; textures += 3) session.AddSet(kOtherProcess);
      series.Add(std::to_string(wanted), TimeFrames(frames, [&] { session.Frame(1); }));
    }
    session.DestroySets(kOtherProcess);
  }
  return series;
}

}  // namespace

std::vector<Series> MeasureLayerFrames(const Plan& plan) {
  const int blocks = plan.isShort ? 24 : 240, frames = 5;
  LayerSession session(plan);
  BareLayerFrames bare = session.MakeBaseline();
  std::vector<Series> all;
  for (const int layers : {1, 4}) {
    const std::string name = "frame of " + std::to_string(layers) + (layers == 1 ? " layer" : " layers");
    all.push_back(TakeFrameTurns(
        name.c_str(), blocks, frames, [&] { bare.Run(session.SyncTexture(), layers); },
        [&] { session.Frame(layers); }));
  }
  all.push_back(MeasureAgainstLayers(session, plan.isShort ? 1 : 20, 4 * frames));
  all.push_back(MeasureAgainstTextures(session, plan.isShort ? 1 : 20, 4 * frames));
  return all;
}

}  // namespace bench::speed
