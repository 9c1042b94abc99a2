#include "link/frame_hand_off.h"

#include <cstddef>
#include <mutex>

#include "platform/process.h"

namespace ombrel {

FrameHandOff::FrameHandOff(IFrameRenderer& renderer, const FramePacer& pacer, FrameSharing& sharing,
                           CompanionPipeClient& client)
    : renderer_(renderer), pacer_(pacer), sharing_(sharing), client_(client) {}

void FrameHandOff::ResetCounters() {
  const std::lock_guard lock(stateMutex_);
  submittedFrames_ = -1;
  trackingUpdates_ = 0;
}

void FrameHandOff::StartStreaming() {
  isUndefined_.fill(true);
  currentTexture_ = 1;
  AcquireNextTexture();
  ClearIfUndefined();
  const std::lock_guard lock(stateMutex_);
  // A link that dropped meanwhile is reported next, and its frames are not to be taken for those of another.
  if (client_.IsConnected()) streamingActive_.Open();
  stateChanged_.NotifyAll();
}

void FrameHandOff::EndStreaming() {
  {
    const std::lock_guard lock(stateMutex_);
    streamingActive_.Close();
    stateChanged_.NotifyAll();
  }
  streamingActive_.Drain();
}

void FrameHandOff::HandOffLayers(std::uint64_t syncTexture, std::vector<LayerRecord>& layers, const FramePose& pose) {
  const SubmissionGate::Pass pass(streamingActive_);
  if (!pass || EndIfDeviceLost()) return;
  SendFrameSharingInfo();
  if (syncTexture != 0 && !renderer_.AcquireSyncTexture(syncTexture, pacer_.AcquireTimeoutMs())) {
    layers.clear();
    return;
  }
  // Whether or not the output could be had: compatibility.md, C42.
  renderer_.BeginLayers();
  for (const LayerRecord& layer : layers) renderer_.ComposeLayer(currentTexture_, layer);
  layers.clear();
  sharing_.WriteSlot(currentTexture_, pose);
  PassOn();
  renderer_.ClearOutput(currentTexture_);
  renderer_.ReleaseSyncTexture();
}

void FrameHandOff::HandOffTexture(std::uint64_t texture) {
  const SubmissionGate::Pass pass(streamingActive_);
  if (!pass || EndIfDeviceLost()) return;
  std::unique_lock lock(stateMutex_);
  if (!streamingActive_.IsOpen()) return;  // it closed while the lock was waited for
  SendFrameSharingInfo();
  if (!renderer_.CopyToOutput(texture, currentTexture_, lastAcquireSucceeded_, pacer_.AcquireTimeoutMs())) return;
  PassOn();
  ClearIfUndefined();
  stateChanged_.Wait(lock, [this] { return !streamingActive_.IsOpen() || submittedFrames_ < trackingUpdates_; });
}

void FrameHandOff::CountTrackingUpdate() {
  const std::lock_guard lock(stateMutex_);
  ++trackingUpdates_;
  stateChanged_.NotifyAll();
}

bool FrameHandOff::EndIfDeviceLost() {
  if (!renderer_.IsDeviceLost()) return false;
  client_.DropConnection();
  return true;
}

// Once per connection, ahead of its first frame.
void FrameHandOff::SendFrameSharingInfo() {
  if (!client_.TakeNewConnection()) return;
  client_.Send(LinkMessageType::kFrameSharingInfo,
               MakeFrameSharingInfo(CurrentProcessId(), renderer_.Sharing(), sharing_.Name()));
}

void FrameHandOff::PassOn() {
  ++submittedFrames_;
  ReleaseCurrentTexture();
  AcquireNextTexture();
}

bool FrameHandOff::ReleaseCurrentTexture() { return renderer_.ReleaseOutput(currentTexture_); }

bool FrameHandOff::AcquireNextTexture() {
  currentTexture_ = (currentTexture_ + 1) % 2;
  lastAcquireSucceeded_ = renderer_.AcquireOutput(currentTexture_, pacer_.AcquireTimeoutMs());
  return lastAcquireSucceeded_;
}

// A new texture may hold what was in the memory before, and a frame may bring nothing to copy.
void FrameHandOff::ClearIfUndefined() {
  bool& isUndefined = isUndefined_[static_cast<std::size_t>(currentTexture_)];
  if (!lastAcquireSucceeded_ || !isUndefined) return;
  isUndefined = false;
  renderer_.ClearOutput(currentTexture_);
}

}  // namespace ombrel
