#include "frame_parts.h"

#include <stdexcept>

#include "base/wait.h"
#include "clocks.h"
#include "runtime/keyed_texture.h"
#include "sharing/sharing_device.h"

namespace bench::speed {

DriverContextFinder::DriverContextFinder() { SetObserver(DeviceGroup::kIntercepted, this); }

DriverContextFinder::~DriverContextFinder() { SetObserver(DeviceGroup::kIntercepted, nullptr); }

void DriverContextFinder::OnClearRenderTargetView(ID3D11RenderTargetView* view, std::span<const FLOAT, 4>) {
  NoteDeviceOf(*view);
}

void DriverContextFinder::OnCopyResource(ID3D11Resource* target, ID3D11Resource*) {
  copyTarget_ = target;
  NoteDeviceOf(*target);
}

void DriverContextFinder::NoteDeviceOf(ID3D11DeviceChild& child) {
  Microsoft::WRL::ComPtr<ID3D11Device> device;
  child.GetDevice(&device);
  device->GetImmediateContext(context_.ReleaseAndGetAddressOf());
}

Microsoft::WRL::ComPtr<ID3D11Texture2D> KeepWithoutCopies(ID3D11DeviceContext& context, HANDLE texture) {
  Microsoft::WRL::ComPtr<ID3D11Device> device;
  context.GetDevice(&device);
  Microsoft::WRL::ComPtr<ID3D11Texture2D> kept;
  RequireOk(device->OpenSharedResource(texture, IID_PPV_ARGS(&kept)), "opening the runtime's texture");
  RequireOk(MarkReadOnly(kept.Get()), "marking the runtime's texture");
  return kept;
}

std::vector<double> TimeFrames(int frames, const std::function<void()>& frame) {
  std::vector<double> values;
  for (int i = 0; i < frames; ++i) {
    const std::int64_t begin = ThreadNanoseconds();
    frame();
    values.push_back(static_cast<double>(ThreadNanoseconds() - begin) / 1000.0);
  }
  return values;
}

Series TakeFrameTurns(const char* name, int blocks, int frames, const std::function<void()>& baselineFrame,
                      const std::function<void()>& driverFrame) {
  Series series{name, "µs", {}};
  static_cast<void>(TimeFrames(frames, baselineFrame));
  static_cast<void>(TimeFrames(frames, driverFrame));
  for (int i = 0; i < blocks; ++i) {
    series.Add(kBaseline, TimeFrames(frames, baselineFrame));
    series.Add(kDriver, TimeFrames(frames, driverFrame));
  }
  return series;
}

void RunUntil(const std::function<bool()>& done, const std::function<void()>& frame) {
  constexpr std::chrono::seconds kPatience(20);
  const bool came = WaitUntil(
      [&] {
        frame();
        return done();
      },
      kPatience);
  if (!came) throw std::runtime_error("the driver takes no frames");
}

}  // namespace bench::speed
