#pragma once

#include "texture_facet.h"

#include <dxgi.h>

namespace bench {

// IDXGIResource of a shared texture, for its handle. Any thread.
class SharedResource final : public TextureFacet<IDXGIResource> {
 public:
  using TextureFacet::TextureFacet;

  HRESULT STDMETHODCALLTYPE GetSharedHandle(HANDLE* handle) override;
  HRESULT STDMETHODCALLTYPE GetUsage(DXGI_USAGE* usage) override;
  HRESULT STDMETHODCALLTYPE SetEvictionPriority(UINT priority) override;
  HRESULT STDMETHODCALLTYPE GetEvictionPriority(UINT* priority) override;

 private:
  ~SharedResource() override = default;
};

}  // namespace bench
