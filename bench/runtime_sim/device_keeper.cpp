#include "device_keeper.h"

namespace bench {

void DeviceKeeper::OnCreateRenderTargetView(ID3D11Resource* resource, const D3D11_RENDER_TARGET_VIEW_DESC*) {
  if (resource != nullptr && !kept_.exchange(true)) {
    ID3D11Device* device = nullptr;
    resource->GetDevice(&device);  // the reference that comes with it is the one that stays
  }
}

}  // namespace bench
