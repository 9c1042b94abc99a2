#include "gpu_support/recorded_calls.h"

#include <wrl/client.h>

#include <algorithm>
#include <cstring>

#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

using Microsoft::WRL::ComPtr;

// Set while a draw is described: the calls that this takes are not the driver's.
thread_local bool ownCalls = false;

template <class Content>
Content ReadBuffer(ID3D11Device& device, ID3D11DeviceContext& context, ID3D11Buffer* buffer) {
  Content content{};
  if (buffer == nullptr) return content;
  const D3D11_BUFFER_DESC desc{sizeof(content), D3D11_USAGE_STAGING, 0, D3D11_CPU_ACCESS_READ, 0, 0};
  ComPtr<ID3D11Buffer> staging;
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(device.CreateBuffer(&desc, nullptr, &staging))) return content;
  context.CopyResource(staging.Get(), buffer);
  if (FAILED(context.Map(staging.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return content;
  std::memcpy(&content, mapped.pData, sizeof(content));
  context.Unmap(staging.Get(), 0);
  return content;
}

void DescribeOutput(ID3D11DeviceContext& context, Drawn& drawn) {
  ComPtr<ID3D11RenderTargetView> target;
  ComPtr<ID3D11DepthStencilView> depth;
  context.OMGetRenderTargets(1, &target, &depth);
  drawn.target = target.Get();
  drawn.hasDepth = depth != nullptr;
  ComPtr<ID3D11BlendState> blend;
  context.OMGetBlendState(&blend, nullptr, nullptr);
  D3D11_BLEND_DESC blendDesc{};
  if (blend) blend->GetDesc(&blendDesc);
  drawn.blendEnabled = blendDesc.RenderTarget[0].BlendEnable;
  std::array<D3D11_VIEWPORT, 16> viewports{};
  drawn.viewports = viewports.size();
  context.RSGetViewports(&drawn.viewports, viewports.data());
  drawn.viewport = viewports[0];
}

void DescribeInput(ID3D11DeviceContext& context, Drawn& drawn) {
  ComPtr<ID3D11InputLayout> layout;
  context.IAGetInputLayout(&layout);
  drawn.hasInputLayout = layout != nullptr;
  ComPtr<ID3D11Buffer> vertices;
  UINT stride = 0, offset = 0;
  context.IAGetVertexBuffers(0, 1, &vertices, &stride, &offset);
  drawn.hasVertexBuffer = vertices != nullptr;
  ComPtr<ID3D11SamplerState> sampler;
  context.PSGetSamplers(0, 1, &sampler);
  drawn.hasSampler = sampler != nullptr;
  context.IAGetPrimitiveTopology(&drawn.topology);
}

}  // namespace

RecordedCalls::RecordedCalls(bench::DeviceGroup group) : group_(group) { bench::SetObserver(group, this); }

RecordedCalls::~RecordedCalls() { bench::SetObserver(group_, nullptr); }

void RecordedCalls::Fail(bench::DeviceCall call, HRESULT result) {
  const std::lock_guard lock(mutex_);
  failing_[call] = {result, std::nullopt};
}

void RecordedCalls::FailOne(bench::DeviceCall call, HRESULT result, std::size_t nth) {
  const std::lock_guard lock(mutex_);
  failing_[call] = {result, asked_[call] + nth};
}

void RecordedCalls::Allow(bench::DeviceCall call) {
  const std::lock_guard lock(mutex_);
  failing_.erase(call);
}

std::vector<RecordedCall> RecordedCalls::All() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

std::size_t RecordedCalls::Asked(bench::DeviceCall call) const {
  const std::lock_guard lock(mutex_);
  const auto found = asked_.find(call);
  return found != asked_.end() ? found->second : 0;
}

void RecordedCalls::Clear() {
  const std::lock_guard lock(mutex_);
  calls_.clear();
}

void RecordedCalls::Add(RecordedCall call) {
  if (ownCalls) return;
  const std::lock_guard lock(mutex_);
  calls_.push_back(std::move(call));
}

std::optional<HRESULT> RecordedCalls::Answer(bench::DeviceCall call) {
  if (ownCalls) return std::nullopt;
  const std::lock_guard lock(mutex_);
  const std::size_t number = asked_[call]++;
  const auto found = failing_.find(call);
  if (found == failing_.end() || number != found->second.only.value_or(number)) return std::nullopt;
  return found->second.result;
}

void RecordedCalls::OnCreateShaderResourceView(ID3D11Resource* /*resource*/,
                                               const D3D11_SHADER_RESOURCE_VIEW_DESC* desc) {
  Add(SourceViewMade{desc != nullptr ? *desc : D3D11_SHADER_RESOURCE_VIEW_DESC{}});
}

void RecordedCalls::OnCreateRenderTargetView(ID3D11Resource* /*resource*/, const D3D11_RENDER_TARGET_VIEW_DESC* desc) {
  Add(TargetViewMade{desc != nullptr ? *desc : D3D11_RENDER_TARGET_VIEW_DESC{}});
}

void RecordedCalls::OnAcquireSync(std::uint32_t handle, UINT64 key, DWORD timeoutMs, HRESULT result) {
  Add(Acquired{handle, key, timeoutMs, result});
}

void RecordedCalls::OnReleaseSync(std::uint32_t handle, UINT64 key, HRESULT result) {
  Add(Released{handle, key, result});
  if (onRelease) onRelease(handle);
}

void RecordedCalls::OnOMSetRenderTargets(std::span<ID3D11RenderTargetView* const> views,
                                         ID3D11DepthStencilView* depth) {
  target_ = views.empty() ? nullptr : views[0];
  Add(TargetsBound{{views.begin(), views.end()}, depth});
}

void RecordedCalls::OnOMSetBlendState(ID3D11BlendState* state, const FLOAT* factor, UINT sampleMask) {
  D3D11_BLEND_DESC desc{};
  if (state != nullptr) state->GetDesc(&desc);
  Add(BlendBound{desc.RenderTarget[0].BlendEnable, factor != nullptr, sampleMask});
}

void RecordedCalls::OnPSSetShaderResources(UINT slot, std::span<ID3D11ShaderResourceView* const> views) {
  if (slot == 0 && !views.empty()) view_ = views[0];
  Add(ViewsBound{slot, {views.begin(), views.end()}});
}

void RecordedCalls::OnDraw(UINT vertices, UINT first) {
  Add(DescribeDraw(vertices, first));
  if (onDraw) onDraw();
}

Drawn RecordedCalls::DescribeDraw(UINT vertices, UINT first) {
  Drawn drawn{};
  drawn.vertices = vertices;
  drawn.first = first;
  // Not asked of the context, which may go on showing an old view in place of none.
  drawn.view = view_;
  if (target_ == nullptr) return drawn;
  ownCalls = true;
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  target_->GetDevice(&device);
  device->GetImmediateContext(&context);
  DescribeOutput(*context.Get(), drawn);
  DescribeInput(*context.Get(), drawn);
  ComPtr<ID3D11Buffer> bounds, parameters;
  context->VSGetConstantBuffers(0, 1, &bounds);
  context->PSGetConstantBuffers(1, 1, &parameters);
  drawn.bounds = ReadBuffer<std::array<float, 4>>(*device.Get(), *context.Get(), bounds.Get());
  drawn.parameters = ReadBuffer<std::array<std::int32_t, 4>>(*device.Get(), *context.Get(), parameters.Get());
  ownCalls = false;
  return drawn;
}

void RecordedCalls::OnClearRenderTargetView(ID3D11RenderTargetView* view, std::span<const FLOAT, 4> colour) {
  Add(Cleared{view, {colour[0], colour[1], colour[2], colour[3]}});
}

}  // namespace ombrel::test
