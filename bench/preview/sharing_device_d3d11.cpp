#include "device.h"
#include "sharing/sharing_device.h"

namespace preview {

Microsoft::WRL::ComPtr<ID3D11Device> CreateDevice(unsigned candidate) {
  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  if (candidate > 0 || FAILED(bench::CreateSharingDevice(&device, &context))) return nullptr;
  return device;
}

}  // namespace preview
