#include "shared_texture.h"

#include <mutex>
#include <utility>

namespace bench {

namespace {

void CountAcquire(AtomicCounters& counters, HRESULT result) {
  if (result == S_OK) ++counters.acquired;
  if (result == static_cast<HRESULT>(WAIT_TIMEOUT)) ++counters.timedOut;
  if (result == static_cast<HRESULT>(WAIT_ABANDONED)) ++counters.abandoned;
}

}  // namespace

SharedTexture::SharedTexture(ID3D11Texture2D* texture, std::shared_ptr<SharedSurface> surface,
                             std::shared_ptr<DeviceState> device)
    : texture_(texture),
      surface_(std::move(surface)),
      device_(std::move(device)),
      alive_(CountAlive(device_->Group().counters.liveSharedTextures)),
      gate_(surface_->Hold(), surface_->Name()),
      copier_(texture, surface_->Format()) {}

SharedTexture::~SharedTexture() {
  if (held_.exchange(false)) {
    --device_->Group().counters.heldMutexes;
    gate_.Abandon();
  }
  device_->Textures().RemoveExpired(Handle());
  SharedTextures().RemoveExpired(texture_);
}

HRESULT SharedTexture::Acquire(std::uint64_t key, DWORD timeoutMs) {
  const HRESULT result = gate_.Acquire(key, timeoutMs);
  CountAcquire(device_->Group().counters, result);
  if (result != S_OK) return result;
  held_ = true;
  ++device_->Group().counters.heldMutexes;
  if (surface_->Version() != version_) Upload();
  return result;
}

HRESULT SharedTexture::Release(std::uint64_t key) {
  if (!gate_.IsHeldHere()) return E_FAIL;
  if (!readOnly_) Download();
  if (held_.exchange(false)) --device_->Group().counters.heldMutexes;
  return gate_.Release(key);
}

HRESULT SharedTexture::Publish() {
  if (HasKeyedMutex()) return E_INVALIDARG;
  const std::lock_guard lock(surface_->PixelLock());
  return Download() ? S_OK : E_FAIL;
}

void SharedTexture::Refresh() {
  if (HasKeyedMutex() || surface_->Version() == version_) return;
  const std::lock_guard lock(surface_->PixelLock());
  Upload();
}

void SharedTexture::Upload() {
  if (!copier_.Upload(surface_->Pixels())) return;
  version_ = surface_->Version().load();
  ++device_->Group().counters.uploads;
}

bool SharedTexture::Download() {
  if (!copier_.Download(surface_->Pixels())) return false;
  version_ = ++surface_->Version();
  ++device_->Group().counters.downloads;
  return true;
}

// Never destroyed: textures may outlive the program's static objects.
WeakRegistry<const void*, SharedTexture>& SharedTextures() {
  static auto& textures = *new WeakRegistry<const void*, SharedTexture>;
  return textures;
}

}  // namespace bench
