#include "gpu_support/runtime_side.h"

#include <stdexcept>
#include <string>

#include "picture/read_image.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace ombrel::test {
namespace {

constexpr UINT64 kKey = 0;
constexpr DWORD kAcquireMs = 20'000;

}  // namespace

ID3D11Device& RuntimeSide::Device() {
  if (!device_) bench::RequireOk(bench::CreateSharingDevice(&device_, &context_), "making the runtime's device");
  return *device_.Get();
}

RuntimeSide::Shared RuntimeSide::MakeShared(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags) {
  const auto desc = bench::TextureDescription(width, height, format, miscFlags);
  Shared shared;
  bench::RequireOk(Device().CreateTexture2D(&desc, nullptr, &shared.texture), "making a shared texture");
  shared.keyedMutex = bench::FindKeyedMutex(shared.texture.Get());
  shared.handle = bench::SharedHandle(shared.texture.Get());
  return shared;
}

RuntimeSide::Shared RuntimeSide::Open(std::uint64_t handle) {
  Shared shared{bench::OpenTexture(Device(), static_cast<std::uint32_t>(handle)), {}, handle};
  if (!shared.texture) throw std::runtime_error("no texture of handle " + std::to_string(handle));
  shared.keyedMutex = bench::FindKeyedMutex(shared.texture.Get());
  return shared;
}

void RuntimeSide::Paint(const Shared& shared, const bench::Painter& painter) {
  if (shared.keyedMutex) bench::RequireOk(shared.keyedMutex->AcquireSync(kKey, kAcquireMs), "acquiring a texture");
  D3D11_TEXTURE2D_DESC desc{};
  shared.texture->GetDesc(&desc);
  const auto image = bench::Paint(static_cast<int>(desc.Width), static_cast<int>(desc.Height), painter);
  context_->UpdateSubresource(shared.texture.Get(), 0, nullptr, image.pixels.data(), 4 * desc.Width, 0);
  if (shared.keyedMutex) {
    bench::RequireOk(shared.keyedMutex->ReleaseSync(kKey), "releasing a texture");
  } else {
    bench::RequireOk(bench::PublishSharedTexture(shared.texture.Get()), "publishing a texture");
  }
}

bench::Image RuntimeSide::See(std::uint64_t handle) {
  const Shared shared = Open(handle);
  bench::RequireOk(shared.keyedMutex->AcquireSync(kKey, kAcquireMs), "acquiring a texture");
  bench::Image image = bench::ReadImage(shared.texture.Get());
  bench::RequireOk(shared.keyedMutex->ReleaseSync(kKey), "releasing a texture");
  return image;
}

bool RuntimeSide::CanOpen(std::uint64_t handle) {
  return bench::OpenTexture(Device(), static_cast<std::uint32_t>(handle)) != nullptr;
}

}  // namespace ombrel::test
