#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstddef>
#include <cstdint>

#include "bare/frame_calls.h"

namespace bench::scenarios {

// The Direct3D calls that shared outputs cost for each connection and each frame of layers, on a device of their own,
// and no more. The constructor throws std::runtime_error when it cannot make something. One thread at a time.
class BareOutputs {
 public:
  BareOutputs();

  // Two new textures in the place of those before, and what is made anew beside them. Output 0 is held then. False when
  // Direct3D refuses something.
  [[nodiscard]] bool Make();
  // Draws a layer into the held output, gives it away, and takes and clears the other one.
  void HandOver();

  [[nodiscard]] std::size_t Held() const { return outputs_.held; }
  // As they are announced.
  [[nodiscard]] std::uint32_t SharedHandle(std::size_t index) const;

 private:
  void MakeShaders();
  void MakeSource();
  [[nodiscard]] bool MakeOutput(Output& output);
  [[nodiscard]] bool MakeState();

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  LayerCalls layer_;
  Microsoft::WRL::ComPtr<ID3D11BlendState> unused_;  // the driver makes one for premultiplied layers, too
  OutputPair outputs_;
};

}  // namespace bench::scenarios
