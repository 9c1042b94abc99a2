#pragma once

#include <d3d11.h>

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

namespace ombrel::test {

// Calls as they reached Direct3D. Pointers tell objects apart and are not to be used.
struct BufferMade {
  D3D11_BUFFER_DESC desc;
};
struct TextureMade {
  D3D11_TEXTURE2D_DESC desc;
};
struct SourceViewMade {
  D3D11_SHADER_RESOURCE_VIEW_DESC desc;
};
struct TargetViewMade {
  D3D11_RENDER_TARGET_VIEW_DESC desc;
};
struct BlendMade {
  D3D11_BLEND_DESC desc;
};
struct SamplerMade {
  D3D11_SAMPLER_DESC desc;
};
struct Opened {
  std::uint32_t handle;
  HRESULT result;
};
struct Acquired {
  std::uint32_t handle;
  std::uint64_t key;
  DWORD timeoutMs;
  HRESULT result;
};
struct Released {
  std::uint32_t handle;
  std::uint64_t key;
  HRESULT result;
};
struct TargetsBound {
  std::vector<const void*> views;
  const void* depth;
};
struct BlendBound {
  BOOL enabled;
  bool hasFactor;
  UINT sampleMask;
};
struct ViewsBound {
  UINT slot;
  std::vector<const void*> views;
};
struct Copied {
  const void* target;
  const void* source;
};
struct Cleared {
  const void* view;
  std::array<float, 4> colour;
};
struct Flushed {};
// A draw with what was bound for it.
struct Drawn {
  UINT vertices, first;
  const void* target;  // render-target view 0
  const void* view;    // pixel shader resource 0
  D3D11_VIEWPORT viewport;
  UINT viewports;
  D3D11_PRIMITIVE_TOPOLOGY topology;
  bool hasInputLayout, hasVertexBuffer, hasSampler, hasDepth;
  BOOL blendEnabled;
  std::array<float, 4> bounds;             // vertex constant buffer 0
  std::array<std::int32_t, 4> parameters;  // pixel constant buffer 1
};

using RecordedCall =
    std::variant<BufferMade, TextureMade, SourceViewMade, TargetViewMade, BlendMade, SamplerMade, Opened, Acquired,
                 Released, TargetsBound, BlendBound, ViewsBound, Copied, Cleared, Flushed, Drawn>;

}  // namespace ombrel::test
