#pragma once

#include <d3d11.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "sharing/textures.h"

namespace bench::test {

using Microsoft::WRL::ComPtr;

inline constexpr UINT kWidth = 61;  // odd, so that rows of mapped textures have padding
inline constexpr UINT kHeight = 37;

// What AcquireSync answers besides S_OK, and a wait that ends only where something is wrong.
inline constexpr auto kTimeout = static_cast<HRESULT>(WAIT_TIMEOUT);
inline constexpr auto kAbandoned = static_cast<HRESULT>(WAIT_ABANDONED);
inline constexpr DWORD kLongMs = 20'000;

// 32-bit words, row by row without gaps: one to a pixel, or two where pixels have 64 bits.
using Pixels = std::vector<std::uint32_t>;

// bench::Pattern in words.
[[nodiscard]] Pixels Pattern(std::uint8_t seed, UINT width = kWidth, UINT height = kHeight);

// A shareable description: 61 x 37, RGBA, one level, default usage, shader resource and render target.
[[nodiscard]] inline D3D11_TEXTURE2D_DESC Description(UINT miscFlags, DXGI_FORMAT format = DXGI_FORMAT_R8G8B8A8_UNORM) {
  return TextureDescription(kWidth, kHeight, format, miscFlags);
}

// A device with its context: one side of a shared texture.
class Side {
 public:
  Side();

  [[nodiscard]] ComPtr<ID3D11Texture2D> Create(const D3D11_TEXTURE2D_DESC& description) const;
  [[nodiscard]] ComPtr<ID3D11Texture2D> Open(std::uint32_t handle) const { return OpenTexture(*device.Get(), handle); }
  void Write(ID3D11Texture2D* texture, const Pixels& pixels) const;
  // What this device sees in a texture.
  [[nodiscard]] static Pixels Read(ID3D11Texture2D* texture);

  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
};

// Two devices for all tests of a suite, since it takes a second to make one.
class TwoSidesTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    makerSide.emplace();
    openerSide.emplace();
  }
  static void TearDownTestSuite() {
    openerSide.reset();
    makerSide.reset();
  }

  static inline std::optional<Side> makerSide, openerSide;
};

}  // namespace bench::test
