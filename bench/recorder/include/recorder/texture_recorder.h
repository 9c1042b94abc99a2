#pragma once

#include "recorder/recording_file.h"
#include "sharing/device_observer.h"

namespace bench {

// Records what the program that it observes does with keyed mutexes and shared textures.
class TextureRecorder : public DeviceObserver {
 public:
  // The file must outlive it.
  explicit TextureRecorder(const RecordingFile& file) : file_(file) {}

  [[nodiscard]] std::optional<HRESULT> Answer(DeviceCall call) override;
  void OnAcquireSync(std::uint32_t handle, UINT64 key, DWORD timeoutMs, HRESULT result) override;
  void OnReleaseSync(std::uint32_t handle, UINT64 key, HRESULT result) override;
  void OnReadSharedTexture(std::uint32_t handle) override;

 private:
  const RecordingFile& file_;
};

}  // namespace bench
