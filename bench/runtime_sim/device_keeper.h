#pragma once

#include <atomic>

#include "sharing/device_observer.h"

namespace bench {

/// Keeps the driver's Direct3D device until the process ends, however often the driver lets go of it.
/// Wine without its command-stream thread, which is much the faster way on few cores, never comes to an
/// end of destroying a device that several threads have used. It is to live as long as the driver's calls.
class DeviceKeeper : public DeviceObserver {
 public:
  void OnCreateRenderTargetView(ID3D11Resource* resource, const D3D11_RENDER_TARGET_VIEW_DESC* desc) override;

 private:
  std::atomic<bool> kept_ = false;
};

}  // namespace bench
