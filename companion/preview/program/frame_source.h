#pragma once

#include <d3d11.h>
#include <wrl/client.h>

#include <functional>
#include <optional>

#include "companion/frame_reader.h"
#include "companion/messages.h"

namespace preview {

// The driver's frames, on whichever adapter its textures can be opened. For one thread.
class FrameSource {
 public:
  // Makes a device at once: that takes longer than a driver that has announced its frames likes to wait.
  FrameSource();

  // False when they cannot be opened on any adapter.
  [[nodiscard]] bool Open(const companion::FrameSharingInfo& info);
  void Close() { reader_.reset(); }
  [[nodiscard]] bool IsOpen() const { return reader_ && reader_->IsOpen(); }

  // Waits a few milliseconds for a frame. `wantsPixels` is asked while the driver waits for the texture.
  [[nodiscard]] std::optional<companion::FrameInfo> Next(
      const std::function<bool(const companion::FrameInfo&)>& wantsPixels);
  [[nodiscard]] std::optional<companion::Picture> Pixels() { return reader_->Pixels(); }

 private:
  bool OpenOn(Microsoft::WRL::ComPtr<ID3D11Device> device, const companion::FrameSharingInfo& info);

  Microsoft::WRL::ComPtr<ID3D11Device> device_;  // the last one that served
  std::optional<companion::FrameReader> reader_;
};

}  // namespace preview
