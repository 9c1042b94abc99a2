#include "frame_renderer_d3d11.h"

#include <mutex>
#include <utility>

#include "context/driver_log.h"
#include "render/format_rule.h"

namespace ombrel {

std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer() { return std::make_unique<FrameRenderer>(); }

void FrameRenderer::CreateDevice() {
  RenderDevice made = CreateRenderDevice();
  if (made.device) pipeline_.CreateShaders(*made.device.Get());
  ReplaceDevice(std::move(made));
}

bool FrameRenderer::IsDeviceLost() {
  if (isLost_) return true;
  const ComPtr<ID3D11Device> device = Device();
  const HRESULT reason = device ? device->GetDeviceRemovedReason() : S_OK;
  if (SUCCEEDED(reason)) return false;
  if (!isLost_.exchange(true)) Log("Graphics device lost, reason: %d\n", static_cast<int>(reason));
  return true;
}

bool FrameRenderer::RemakeDevice() {
  ready_.store(false, std::memory_order_release);
  outputs_.Release();
  pipeline_ = {};
  // What is bound would live as long as the device, and that as long as the runtime keeps a swap texture of it.
  if (device_.context) device_.context->ClearState();
  ReplaceDevice({});
  CreateDevice();
  if (!device_.device || !pipeline_.HasShaders()) return false;
  // A headset that was never activated has no output yet.
  if (output_.width != 0 && !(CreateOutputTextures() && pipeline_.CanDraw())) return false;
  isLost_ = false;
  Log("Graphics device made anew\n");
  return true;
}

void FrameRenderer::ReplaceDevice(RenderDevice device) {
  ViewMap views;  // of the old device: they go, and it goes, when the lock has gone
  const std::lock_guard lock(mutex_);
  std::swap(device_, device);
  std::swap(textureViews_, views);
}

bool FrameRenderer::CreateOutputTextures() {
  ready_.store(false, std::memory_order_release);
  outputs_.Release();
  if (!device_.device || !device_.context) return false;
  output_.format = ViewFormat(output_.format);
  const auto format = static_cast<DXGI_FORMAT>(output_.format);
  if (!outputs_.Create(*device_.device.Get(), output_.width, output_.height, format)) return false;
  device_.context->Flush();
  ready_.store(true, std::memory_order_release);
  D3D11_TEXTURE2D_DESC made{};
  outputs_.Texture(0)->GetDesc(&made);
  outputs_.CreateViews(*device_.device.Get(), made.Format);
  pipeline_.CreateState(*device_.device.Get(), *device_.context.Get(), output_.width, output_.height);
  return true;
}

OutputSharing FrameRenderer::Sharing() {
  return {.handles = {outputs_.SharedHandle(0), outputs_.SharedHandle(1)}, .invertY = output_.invertY};
}

bool FrameRenderer::AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) {
  return syncHold_.Acquire(OpenRuntimeTexture(device_.device.Get(), handle), timeoutMs);
}

void FrameRenderer::BeginLayers() {
  if (device_.context) pipeline_.BindOpaqueBlend(*device_.context.Get());
}

void FrameRenderer::ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) {
  if (!device_.context) return;
  // References of our own, so that UnregisterTexture need not wait for the draw calls.
  const View left = FindView(layer.leftTexture), right = FindView(layer.rightTexture);
  pipeline_.Draw(*device_.context.Get(), outputs_.View(outputIndex), {left.Get(), right.Get()}, *layer.bounds,
                 output_.invertY);
}

void FrameRenderer::ClearOutput(std::int32_t index) {
  ID3D11RenderTargetView* view = outputs_.View(index);
  if (!device_.context || view == nullptr) return;
  constexpr std::array<float, 4> kBlack{0.0F, 0.0F, 0.0F, 1.0F};
  device_.context->OMSetRenderTargets(1, &view, nullptr);
  device_.context->ClearRenderTargetView(view, kBlack.data());
}

bool FrameRenderer::CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                                 std::uint32_t timeoutMs) {
  const ComPtr<ID3D11Texture2D> texture = OpenRuntimeTexture(device_.device.Get(), handle);
  RuntimeTextureHold hold;
  if (!hold.Acquire(texture, timeoutMs)) return false;
  ID3D11Texture2D* output = outputs_.Texture(outputIndex);
  if (texture && outputAcquired && output != nullptr) device_.context->CopyResource(output, texture.Get());
  return true;
}

SwapTexture FrameRenderer::CreateSwapTexture(const SwapTextureDesc& swap) {
  const ComPtr<ID3D11Device> device = Device();
  if (!device) return {};
  const D3D11_TEXTURE2D_DESC desc{
      .Width = swap.width,
      .Height = swap.height,
      .MipLevels = 1,
      .ArraySize = 1,
      .Format = static_cast<DXGI_FORMAT>(swap.format),
      .SampleDesc = {.Count = swap.sampleCount, .Quality = 0},
      .Usage = D3D11_USAGE_DEFAULT,
      .BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET,
      .CPUAccessFlags = 0,
      .MiscFlags = D3D11_RESOURCE_MISC_SHARED,
  };
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  if (FAILED(device->CreateTexture2D(&desc, nullptr, texture.GetAddressOf())) || FAILED(texture.As(&resource)) ||
      FAILED(resource->GetSharedHandle(&handle))) {
    return {};
  }
  return {.handle = reinterpret_cast<std::uintptr_t>(handle),
          .texture = std::make_shared<ComPtr<ID3D11Texture2D>>(texture)};
}

void FrameRenderer::RegisterTexture(std::uint64_t handle) {
  const ComPtr<ID3D11Device> device = Device();
  const ComPtr<ID3D11Texture2D> texture = OpenRuntimeTexture(device.Get(), handle);
  if (!texture) return;
  D3D11_TEXTURE2D_DESC desc{};
  texture->GetDesc(&desc);
  D3D11_SHADER_RESOURCE_VIEW_DESC viewDesc{};
  viewDesc.Format = static_cast<DXGI_FORMAT>(ViewFormat(static_cast<std::uint32_t>(desc.Format)));
  viewDesc.ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2D;
  viewDesc.Texture2D.MipLevels = 1;
  View view;
  if (FAILED(device->CreateShaderResourceView(texture.Get(), &viewDesc, view.GetAddressOf()))) return;
  const std::lock_guard lock(mutex_);
  // A device that was replaced meanwhile leaves no view behind.
  if (device.Get() == device_.device.Get()) textureViews_.try_emplace(handle, view);
}

void FrameRenderer::UnregisterTexture(std::uint64_t handle) {
  ViewMap::node_type removed;  // its view goes when the lock has gone
  const std::lock_guard lock(mutex_);
  removed = textureViews_.extract(handle);
}

// For the threads that make and open swap textures.
ComPtr<ID3D11Device> FrameRenderer::Device() const {
  const std::lock_guard lock(mutex_);
  return device_.device;
}

// Null for a texture that nobody registered.
FrameRenderer::View FrameRenderer::FindView(std::uint64_t handle) const {
  const std::lock_guard lock(mutex_);
  const auto found = textureViews_.find(handle);
  return found != textureViews_.end() ? found->second : nullptr;
}

}  // namespace ombrel
