#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstdint>
#include <vector>

// What programs do again and again with textures and their shared handles. Functions that return an object answer null
// where Direct3D refuses; the thread is the one that uses the device.
namespace bench {

// Throws std::runtime_error with `what` and the result's number unless the result is S_OK: time-outs and abandoned
// holds are positive, so that FAILED would miss them.
void RequireOk(HRESULT result, const char* what);

// Default usage, one level, one sample, a shader resource and a render target.
[[nodiscard]] D3D11_TEXTURE2D_DESC TextureDescription(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags = 0);
// The same size and format, for the processor to read.
[[nodiscard]] D3D11_TEXTURE2D_DESC StagingDescription(const D3D11_TEXTURE2D_DESC& description);

// Shared handles travel as 32 bits and are widened with zeros. 0 stands for none.
[[nodiscard]] std::uint32_t SharedHandle(ID3D11Texture2D* texture);
[[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Texture2D> OpenTexture(ID3D11Device& device, std::uint32_t handle);
[[nodiscard]] Microsoft::WRL::ComPtr<IDXGIKeyedMutex> FindKeyedMutex(ID3D11Texture2D* texture);

// The bytes of a staging texture, rows of `rowBytes` without gaps; empty when it cannot be mapped.
[[nodiscard]] std::vector<std::uint8_t> ReadStaging(ID3D11DeviceContext& context, ID3D11Texture2D* staging,
                                                    UINT rowBytes);
// The same of any texture of a format that can be shared, through a staging texture of its own.
[[nodiscard]] std::vector<std::uint8_t> ReadTexture(ID3D11Texture2D* texture);

}  // namespace bench
