#pragma once

#include "device_state.h"

#include <d3d11.h>

#include <cstdint>
#include <memory>

namespace bench {

// Makes a texture that has a shared handle. Called inside the device's CreateTexture2D with a description that
// WantsSharing; arguments and results as there.
[[nodiscard]] HRESULT CreateSharedTexture(const std::shared_ptr<DeviceState>& state, ID3D11Device* device,
                                          const D3D11_TEXTURE2D_DESC& description, const D3D11_SUBRESOURCE_DATA* data,
                                          ID3D11Texture2D** texture);

// The texture behind a handle on this device. A device has one texture per handle: opening again, also on the
// device that created it, gives the same one. E_INVALIDARG when the handle names nothing.
[[nodiscard]] HRESULT OpenSharedTexture(const std::shared_ptr<DeviceState>& state, ID3D11Device* device,
                                        std::uint32_t handle, REFIID iid, void** object);

}  // namespace bench
