#pragma once

#include "texture_facet.h"

#include <dxgi.h>

namespace bench {

// IDXGIKeyedMutex of a shared texture. Any thread, as far as the immediate context may be used there.
class KeyedMutex final : public TextureFacet<IDXGIKeyedMutex> {
 public:
  using TextureFacet::TextureFacet;

  HRESULT STDMETHODCALLTYPE AcquireSync(UINT64 key, DWORD timeoutMs) override;
  HRESULT STDMETHODCALLTYPE ReleaseSync(UINT64 key) override;

 private:
  ~KeyedMutex() override = default;
};

}  // namespace bench
