#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>

#include "bare/frame_calls.h"

namespace bench::speed {

// The Direct3D calls of one frame made of layers and no others, on the driver's own device and with its own objects:
// they are read back from its context, as a frame of one texture for both eyes left them bound. The driver must not be
// handing a frame over meanwhile. One thread.
class BareLayerFrames {
 public:
  explicit BareLayerFrames(ID3D11DeviceContext& context);

  // To be called after each of two frames of the driver: notes the output that it then holds.
  void NoteHeldOutput();
  // The output that the driver holds is another one after each frame, so that their number must be even.
  void Run(HANDLE syncTexture, int layers);

 private:
  LayerCalls layer_;
  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  OutputPair outputs_{.outputs = {}, .held = 1};
};

// The same of a frame that is one copy.
class BareTextureFrames {
 public:
  // `outputs`: the one that the driver holds comes first.
  BareTextureFrames(ID3D11DeviceContext& context, const std::array<Output, 2>& outputs);
  void Run(HANDLE texture);

 private:
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  OutputPair outputs_;
};

// Throws std::runtime_error when it has no keyed mutex.
[[nodiscard]] Output OutputOf(ID3D11Resource& texture);

}  // namespace bench::speed
