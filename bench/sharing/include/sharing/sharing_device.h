#pragma once

#include "sharing/choice.h"
#include "sharing/device_group.h"

#include <d3d11.h>

namespace bench {

class DeviceObserver;

// Direct3D 11 devices whose textures can be shared, for hosts whose Direct3D 11 cannot share: handles from
// IDXGIResource::GetSharedHandle, OpenSharedResource and IDXGIKeyedMutex work between the devices of all
// processes that use this library. Programs call plain Direct3D; README.md says what differs from real sharing.
//
// Where ChooseSharing has decided for Direct3D's own sharing, all of this passes through to it: no method and no import
// is replaced, observers hear of nothing and counters stay 0.
//
// All functions may be called from any thread.

// A hardware device with its immediate context, in DeviceGroup::kOwn. Fails as D3D11CreateDevice does.
[[nodiscard]] HRESULT CreateSharingDevice(ID3D11Device** device, ID3D11DeviceContext** context);

// The same with sharing of that kind, whatever was decided.
[[nodiscard]] HRESULT CreateDeviceOf(Sharing kind, ID3D11Device** device, ID3D11DeviceContext** context);

// Makes every device that `module` creates from now on through its import of D3D11CreateDevice a sharing
// device, in DeviceGroup::kIntercepted. False when the module has no such import. A module that was unloaded
// and loaded again has to be intercepted again.
[[nodiscard]] bool InterceptModule(HMODULE module);

// Makes a device that somebody else made a sharing device, in DeviceGroup::kIntercepted. False when its methods cannot
// be replaced.
[[nodiscard]] bool ShareTexturesOf(ID3D11Device* device);

// For textures made with D3D11_RESOURCE_MISC_SHARED, which have no keyed mutex: makes what this device drew
// into the texture visible to the other devices. They take it over before their next Draw, DrawIndexed,
// CopyResource or CopySubresourceRegion that reads the texture. Call it where a real program would Flush, which it
// does with Direct3D's own sharing.
// E_INVALIDARG for a texture that is not of that kind.
[[nodiscard]] HRESULT PublishSharedTexture(ID3D11Texture2D* texture);

// A promise that this device only reads this keyed-mutex texture: its ReleaseSync then skips copying the
// pixels back. E_INVALIDARG for a texture without a keyed mutex.
[[nodiscard]] HRESULT MarkReadOnly(ID3D11Texture2D* texture);

// From now on `observer` is told of the calls on every device of the group, also of those already made.
// Null ends it; the observer must outlive calls that are still running on other threads.
void SetObserver(DeviceGroup group, DeviceObserver* observer);

}  // namespace bench
