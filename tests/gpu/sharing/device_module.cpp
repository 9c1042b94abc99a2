#include <d3d11.h>

// Makes a device through this module's own import of D3D11CreateDevice.
extern "C" __declspec(dllexport) HRESULT MakeDevice(ID3D11Device** device, ID3D11DeviceContext** context) {
  return D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, device,
                           nullptr, context);
}
