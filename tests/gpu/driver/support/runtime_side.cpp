#include "gpu_support/runtime_side.h"

#include <stdexcept>
#include <string>

#include "gpu_support/pixel_pattern.h"
#include "gpu_support/read_texture.h"
#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

constexpr UINT64 kKey = 0;
constexpr DWORD kAcquireMs = 20'000;

void Require(HRESULT result, const char* what) {
  if (result != S_OK) throw std::runtime_error(std::string(what) + " failed with " + std::to_string(result));
}

}  // namespace

Painter OneColour(const bench::Rgba& rgba) {
  return [rgba](int /*x*/, int /*y*/) { return rgba; };
}

Painter Pattern(std::uint8_t seed) {
  return [seed](int x, int y) { return PatternPixel(seed, x, y); };
}

ID3D11Device& RuntimeSide::Device() {
  if (!device_) Require(bench::CreateSharingDevice(&device_, &context_), "making the runtime's device");
  return *device_.Get();
}

void RuntimeSide::Paint(std::uint64_t handle, const Painter& painter) {
  const ComPtr<ID3D11Texture2D> texture = Open(handle);
  if (!texture) throw std::runtime_error("no texture of handle " + std::to_string(handle));
  Write(texture.Get(), painter);
  Require(bench::PublishSharedTexture(texture.Get()), "publishing a texture");
}

RuntimeSide::Shared RuntimeSide::MakeShared(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags) {
  const D3D11_TEXTURE2D_DESC desc{.Width = width,
                                  .Height = height,
                                  .MipLevels = 1,
                                  .ArraySize = 1,
                                  .Format = format,
                                  .SampleDesc = {.Count = 1, .Quality = 0},
                                  .Usage = D3D11_USAGE_DEFAULT,
                                  .BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET,
                                  .CPUAccessFlags = 0,
                                  .MiscFlags = miscFlags};
  Shared shared;
  Require(Device().CreateTexture2D(&desc, nullptr, &shared.texture), "making a shared texture");
  if ((miscFlags & D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX) != 0) {
    Require(shared.texture.As(&shared.keyedMutex), "finding a keyed mutex");
  }
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  Require(shared.texture.As(&resource), "finding a shared texture's resource");
  Require(resource->GetSharedHandle(&handle), "finding a shared handle");
  shared.handle = reinterpret_cast<std::uintptr_t>(handle);
  return shared;
}

void RuntimeSide::Paint(const Shared& shared, const Painter& painter) {
  if (!shared.keyedMutex) {
    Write(shared.texture.Get(), painter);
    Require(bench::PublishSharedTexture(shared.texture.Get()), "publishing a texture");
    return;
  }
  Require(shared.keyedMutex->AcquireSync(kKey, kAcquireMs), "acquiring a texture");
  Write(shared.texture.Get(), painter);
  Require(shared.keyedMutex->ReleaseSync(kKey), "releasing a texture");
}

bench::Image RuntimeSide::See(std::uint64_t handle) {
  const ComPtr<ID3D11Texture2D> texture = Open(handle);
  ComPtr<IDXGIKeyedMutex> mutex;
  if (!texture || FAILED(texture.As(&mutex)))
    throw std::runtime_error("no texture of handle " + std::to_string(handle));
  Require(mutex->AcquireSync(kKey, kAcquireMs), "acquiring a texture");
  bench::Image image = ReadTexture(Device(), *context_.Get(), texture.Get());
  Require(mutex->ReleaseSync(kKey), "releasing a texture");
  return image;
}

bool RuntimeSide::CanOpen(std::uint64_t handle) { return Open(handle) != nullptr; }

D3D11_TEXTURE2D_DESC RuntimeSide::Describe(std::uint64_t handle) {
  const ComPtr<ID3D11Texture2D> texture = Open(handle);
  D3D11_TEXTURE2D_DESC desc{};
  if (texture) texture->GetDesc(&desc);
  return desc;
}

ComPtr<ID3D11Texture2D> RuntimeSide::Open(std::uint64_t handle) {
  ComPtr<ID3D11Texture2D> texture;
  const auto shared = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handle));
  Device().OpenSharedResource(shared, IID_PPV_ARGS(&texture));
  return texture;
}

void RuntimeSide::Write(ID3D11Texture2D* texture, const Painter& painter) {
  D3D11_TEXTURE2D_DESC desc{};
  texture->GetDesc(&desc);
  bench::Image image(static_cast<int>(desc.Width), static_cast<int>(desc.Height));
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) image.Set(x, y, painter(x, y));
  }
  context_->UpdateSubresource(texture, 0, nullptr, image.pixels.data(), 4 * desc.Width, 0);
}

}  // namespace ombrel::test
