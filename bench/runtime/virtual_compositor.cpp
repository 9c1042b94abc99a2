#include "runtime/virtual_compositor.h"

#include <stdexcept>

#include "base/clock.h"

namespace bench {
namespace {

constexpr DXGI_FORMAT kWindowFormat = DXGI_FORMAT_R8G8B8A8_UNORM;
constexpr std::chrono::milliseconds kBackbufferTimeout(2000);

}  // namespace

vr::IVRVirtualDisplay& VirtualDisplayOf(const ActiveDevice& headset) {
  return *static_cast<vr::IVRVirtualDisplay*>(ComponentOf(*headset.added.driver, vr::IVRVirtualDisplay_Version));
}

VirtualCompositor::VirtualCompositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter,
                                     const Microsoft::WRL::ComPtr<ID3D11Device>& device)
    : Compositor(runtime, headset, painter),
      display_(VirtualDisplayOf(headset)),
      backbuffer_(*device.Get(), Geometry().windowWidth, Geometry().windowHeight, kWindowFormat) {}

void VirtualCompositor::PaintEye(vr::EVREye eye, const runtime::PoseMatrix& head) {
  const EyeGeometry& place = Geometry().eyes[static_cast<std::size_t>(eye)];
  EyeView view = ViewOf(eye, head);
  view.target = backbuffer_.Target();
  view.targetWidth = Geometry().windowWidth;
  view.targetHeight = Geometry().windowHeight;
  view.viewport = {static_cast<float>(place.x),
                   static_cast<float>(place.y),
                   static_cast<float>(place.width),
                   static_cast<float>(place.height),
                   0.0F,
                   1.0F};
  view.gammaEncoded = true;
  Painter().PaintEye(view);
}

void VirtualCompositor::HandOver(FrameReport& report) {
  const std::int64_t begin = NowTicks();
  if (!backbuffer_.Acquire(kBackbufferTimeout)) {
    throw std::runtime_error("the driver did not give the finished texture back");
  }
  report.syncWaitTicks = NowTicks() - begin;
  PaintEye(vr::Eye_Left, report.pose);
  PaintEye(vr::Eye_Right, report.pose);
  backbuffer_.Release();

  vr::PresentInfo_t info{};
  info.backbufferTextureHandle = backbuffer_.Handle();
  info.vsync = vr::VSync_None;
  info.nFrameId = report.index;
  info.flVSyncTimeInSeconds = lastVsyncSeconds_;
  report.presentTicks = NowTicks();
  display_.Present(&info, sizeof info);
  report.presentedTicks = NowTicks();
}

void VirtualCompositor::AfterPresent(const FrameReport&) {
  display_.WaitForPresent();
  float sinceVsync = 0.0F;
  std::uint64_t frameCounter = 0;
  if (display_.GetTimeSinceLastVsync(&sinceVsync, &frameCounter)) {
    lastVsyncSeconds_ = TicksToSeconds(NowTicks()) - static_cast<double>(sinceVsync);
  }
}

}  // namespace bench
