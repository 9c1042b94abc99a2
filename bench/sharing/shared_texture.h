#pragma once

#include "device_state.h"
#include "keyed_gate.h"
#include "shared_surface.h"
#include "texture_copier.h"
#include "weak_registry.h"

#include <d3d11.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace bench {

// One device's texture behind a shared handle: the one that was created with it, or one that was opened.
// The Direct3D texture owns it as private data. Handles, format and the keyed mutex's waiting are for any thread;
// what copies pixels uses the device's immediate context, like the drawing around it.
class SharedTexture {
 public:
  // `texture` is not kept alive.
  SharedTexture(ID3D11Texture2D* texture, std::shared_ptr<SharedSurface> surface, std::shared_ptr<DeviceState> device);
  // Abandons the keyed mutex if it is held.
  ~SharedTexture();
  SharedTexture(const SharedTexture&) = delete;
  SharedTexture& operator=(const SharedTexture&) = delete;

  [[nodiscard]] ID3D11Texture2D* Texture() const { return texture_; }
  [[nodiscard]] std::uint32_t Handle() const { return surface_->Handle(); }
  [[nodiscard]] const SurfaceFormat& Format() const { return surface_->Format(); }
  [[nodiscard]] bool HasKeyedMutex() const { return surface_->HasKeyedMutex(); }
  [[nodiscard]] DeviceObserver& Observer() const { return device_->Group().Observer(); }

  // The keyed mutex; results as KeyedGate's. Acquire takes over newer pixels, Release hands ours on.
  [[nodiscard]] HRESULT Acquire(std::uint64_t key, DWORD timeoutMs);
  [[nodiscard]] HRESULT Release(std::uint64_t key);
  void MarkReadOnly() { readOnly_ = true; }

  // Without keyed mutex: hands our pixels on, or takes over newer ones if there are any.
  [[nodiscard]] HRESULT Publish();
  void Refresh();

  // The texture holds pixels that are in shared memory already, as after creation with initial data.
  void SetCurrent() { version_ = surface_->Version().load(); }
  // The program holds no reference to the texture any more, though views of it may live on.
  void OnUnreferenced() { copier_.DropStaging(); }

 private:
  void Upload();
  bool Download();

  ID3D11Texture2D* texture_;
  std::shared_ptr<SharedSurface> surface_;
  std::shared_ptr<DeviceState> device_;
  std::shared_ptr<void> alive_;
  KeyedGate gate_;
  TextureCopier copier_;
  std::atomic<bool> held_{false};
  std::atomic<bool> readOnly_{false};
  std::atomic<std::uint64_t> version_{0};  // of the pixels that the texture holds
};

// All shared textures of this process by their Direct3D texture.
[[nodiscard]] WeakRegistry<const void*, SharedTexture>& SharedTextures();

}  // namespace bench
