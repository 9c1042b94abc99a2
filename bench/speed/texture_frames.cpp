#include <array>

#include "bare_frames.h"
#include "companion/tracking_update.h"
#include "driver_under_test.h"
#include "experiments.h"
#include "frame_parts.h"
#include "runtime/keyed_texture.h"
#include "sharing/sharing_device.h"

namespace bench::speed {

using namespace companion;

namespace {

using Microsoft::WRL::ComPtr;

constexpr int kVirtualMode = 1;

// A headset whose frames are finished textures, and a runtime that presents one.
class TextureSession {
 public:
  explicit TextureSession(const Plan& plan)
      : driver_(plan.library, Graphics::kSharing, kVirtualMode),
        display_(*static_cast<vr::IVRVirtualDisplay*>(driver_.Component(vr::IVRVirtualDisplay_Version))) {
    RequireOk(CreateSharingDevice(&device_, &context_), "making the runtime's device");
    frame_ = std::make_unique<KeyedTexture>(*device_.Get(), 1000, 600, DXGI_FORMAT_R8G8B8A8_UNORM);
  }

  // A pose for each frame to come: without one a frame would wait.
  void SendPoses(int frames) {
    const Bytes pose = EncodeQuaternionAndPosition({}, {});
    Bytes piece;
    for (int i = 0; i < frames; ++i) piece.insert(piece.end(), pose.begin(), pose.end());
    driver_.Send(piece);
    driver_.companion.Flush();
  }

  void Frame() {
    vr::PresentInfo_t info{};
    info.backbufferTextureHandle = frame_->Handle();
    display_.Present(&info, sizeof(info));
  }

  BareTextureFrames MakeBaseline() {
    const DriverContextFinder finder;
    RunUntil([&] { return finder.CopyTarget() != nullptr; },
             [this] {
               SendPoses(2);
               Frame();
             });
    const Output given = OutputOf(*finder.CopyTarget());
    Frame();
    const Output held = OutputOf(*finder.CopyTarget());
    kept_ = KeepWithoutCopies(*finder.Context(), Texture());
    for (const Output& output : {given, held}) RequireOk(MarkReadOnly(output.texture.Get()), "marking an output");
    // The frame after the one just given goes to the first again.
    return {*finder.Context(), {given, held}};
  }

  [[nodiscard]] HANDLE Texture() const { return reinterpret_cast<HANDLE>(frame_->Handle()); }

 private:
  ComPtr<ID3D11Device> device_;
  ComPtr<ID3D11DeviceContext> context_;
  std::unique_ptr<KeyedTexture> frame_;
  DriverUnderTest driver_;
  vr::IVRVirtualDisplay& display_;
  ComPtr<ID3D11Texture2D> kept_;
};

}  // namespace

std::vector<Series> MeasureTextureFrames(const Plan& plan) {
  const int blocks = plan.isShort ? 24 : 240, frames = 5;
  TextureSession session(plan);
  BareTextureFrames bare = session.MakeBaseline();
  session.SendPoses((blocks + 2) * frames);
  return {TakeFrameTurns(
      "virtual-display frame", blocks, frames, [&] { bare.Run(session.Texture()); }, [&] { session.Frame(); })};
}

}  // namespace bench::speed
