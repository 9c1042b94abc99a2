#pragma once

#include <d3d11.h>
#include <wrl/client.h>

#include <functional>
#include <vector>

#include "series.h"
#include "sharing/device_observer.h"

namespace bench::speed {

// Finds the driver's device by what it draws or copies. While it lives it is the observer of the driver's devices.
class DriverContextFinder final : public DeviceObserver {
 public:
  DriverContextFinder();
  ~DriverContextFinder() override;

  // The immediate context of the device that last drew or copied; null before that.
  [[nodiscard]] ID3D11DeviceContext* Context() const { return context_.Get(); }
  // What was copied to last.
  [[nodiscard]] ID3D11Resource* CopyTarget() const { return copyTarget_.Get(); }

  void OnClearRenderTargetView(ID3D11RenderTargetView* view, std::span<const FLOAT, 4>) override;
  void OnCopyResource(ID3D11Resource* target, ID3D11Resource*) override;

 private:
  void NoteDeviceOf(ID3D11DeviceChild& child);

  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11Resource> copyTarget_;
};

// Opens a shared texture of the runtime's on the driver's device and keeps it open and marked read-only. Otherwise the
// copies that stand in for sharing would be most of a frame.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Texture2D> KeepWithoutCopies(ID3D11DeviceContext& context, HANDLE texture);

// Processor time of this thread for each of a number of frames, in microseconds.
[[nodiscard]] std::vector<double> TimeFrames(int frames, const std::function<void()>& frame);

// Baseline and driver in turns, after as many frames of each that do not count. Frames come in even numbers.
[[nodiscard]] Series TakeFrameTurns(const char* name, int blocks, int frames,
                                    const std::function<void()>& baselineFrame,
                                    const std::function<void()>& driverFrame);

// Runs frames until `done`; throws when it does not come about.
void RunUntil(const std::function<bool()>& done, const std::function<void()>& frame);

}  // namespace bench::speed
