#pragma once

#include <d3d11.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "gpu_support/device_calls.h"
#include "sharing/device_group.h"
#include "sharing/device_observer.h"

namespace ombrel::test {

// Writes down the calls of a group of devices, in their order, and makes those fail that it was told to. While it lives
// it is the group's observer. The record may be read on any thread.
class RecordedCalls : public bench::DeviceObserver {
 public:
  explicit RecordedCalls(bench::DeviceGroup group);
  ~RecordedCalls() override;
  RecordedCalls(const RecordedCalls&) = delete;
  RecordedCalls& operator=(const RecordedCalls&) = delete;

  // From now on, until Allow, such calls have that result and no effect.
  void Fail(bench::DeviceCall call, HRESULT result);
  // Only the `nth` of such calls from now on, counted from 0.
  void FailOne(bench::DeviceCall call, HRESULT result, std::size_t nth);
  void Allow(bench::DeviceCall call);

  [[nodiscard]] std::vector<RecordedCall> All() const;
  // How often such a call was made, failed or not; not cleared.
  [[nodiscard]] std::size_t Asked(bench::DeviceCall call) const;
  void Clear();

  // Called as soon as a keyed mutex is given away, before its owner goes on. Set while no frame is under way.
  std::function<void(std::uint32_t handle)> onRelease;
  // Called ahead of each draw, which goes on when it returns. Set while no frame is under way.
  std::function<void()> onDraw;

  template <class Call>
  [[nodiscard]] std::vector<Call> Of() const {
    std::vector<Call> calls;
    for (const RecordedCall& call : All()) {
      if (const Call* const found = std::get_if<Call>(&call)) calls.push_back(*found);
    }
    return calls;
  }

  std::optional<HRESULT> Answer(bench::DeviceCall call) override;
  void OnCreateBuffer(const D3D11_BUFFER_DESC& desc) override { Add(BufferMade{desc}); }
  void OnCreateTexture2D(const D3D11_TEXTURE2D_DESC& desc) override { Add(TextureMade{desc}); }
  void OnCreateShaderResourceView(ID3D11Resource* resource, const D3D11_SHADER_RESOURCE_VIEW_DESC* desc) override;
  void OnCreateRenderTargetView(ID3D11Resource* resource, const D3D11_RENDER_TARGET_VIEW_DESC* desc) override;
  void OnCreateBlendState(const D3D11_BLEND_DESC& desc) override { Add(BlendMade{desc}); }
  void OnCreateSamplerState(const D3D11_SAMPLER_DESC& desc) override { Add(SamplerMade{desc}); }
  void OnOpenSharedResource(std::uint32_t handle, HRESULT result) override { Add(Opened{handle, result}); }
  void OnAcquireSync(std::uint32_t handle, UINT64 key, DWORD timeoutMs, HRESULT result) override;
  void OnReleaseSync(std::uint32_t handle, UINT64 key, HRESULT result) override;
  void OnOMSetRenderTargets(std::span<ID3D11RenderTargetView* const> views, ID3D11DepthStencilView* depth) override;
  void OnOMSetBlendState(ID3D11BlendState* state, const FLOAT* factor, UINT sampleMask) override;
  void OnPSSetShaderResources(UINT slot, std::span<ID3D11ShaderResourceView* const> views) override;
  void OnDraw(UINT vertices, UINT first) override;
  void OnCopyResource(ID3D11Resource* target, ID3D11Resource* source) override { Add(Copied{target, source}); }
  void OnClearRenderTargetView(ID3D11RenderTargetView* view, std::span<const FLOAT, 4> colour) override;
  void OnFlush() override { Add(Flushed{}); }

 private:
  void Add(RecordedCall call);
  [[nodiscard]] Drawn DescribeDraw(UINT vertices, UINT first);

  const bench::DeviceGroup group_;
  mutable std::mutex mutex_;
  std::vector<RecordedCall> calls_;
  struct Failure {
    HRESULT result;
    std::optional<std::size_t> only;  // the count in asked_ of the one call that fails
  };
  std::map<bench::DeviceCall, Failure> failing_;
  std::map<bench::DeviceCall, std::size_t> asked_;
  ID3D11RenderTargetView* target_ = nullptr;  // bound last: the context keeps it alive
  const void* view_ = nullptr;                // bound last at slot 0
};

}  // namespace ombrel::test
