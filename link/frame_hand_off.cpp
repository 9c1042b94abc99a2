// How frames pass through the link core, on the runtime's threads.
#include <cstddef>
#include <mutex>

#include "link/frame_pacing.h"
#include "link/ombrel_core.h"
#include "platform/clock.h"
#include "platform/process.h"

namespace ombrel {

void OmbrelCore::HandOffLayers(std::uint64_t syncTexture, std::vector<LayerRecord>& layers, const FramePose& pose) {
  const SubmissionGate::Pass pass(streamingActive_);
  if (!pass || EndIfDeviceLost()) return;
  SendFrameSharingInfo();
  if (syncTexture != 0 && !renderer_->AcquireSyncTexture(syncTexture, AcquireTimeoutMs())) {
    layers.clear();
    return;
  }
  renderer_->BeginLayers();
  for (const LayerRecord& layer : layers) renderer_->ComposeLayer(currentTexture_, layer);
  layers.clear();
  sharing_.WriteSlot(currentTexture_, pose);
  ++submittedFrames_;
  renderer_->ReleaseOutput(currentTexture_);
  AcquireNextTexture();
  renderer_->ClearOutput(currentTexture_);
  renderer_->ReleaseSyncTexture();
}

void OmbrelCore::HandOffTexture(std::uint64_t texture) {
  const SubmissionGate::Pass pass(streamingActive_);
  if (!pass || EndIfDeviceLost()) return;
  std::unique_lock lock(stateMutex_);
  if (!streamingActive_.IsOpen()) return;  // it closed while the lock was waited for
  SendFrameSharingInfo();
  if (!renderer_->CopyToOutput(texture, currentTexture_, lastAcquireSucceeded_, AcquireTimeoutMs())) return;
  ++submittedFrames_;
  renderer_->ReleaseOutput(currentTexture_);
  AcquireNextTexture();
  ClearIfUndefined();
  stateChanged_.Wait(lock, [this] { return !streamingActive_.IsOpen() || submittedFrames_ < trackingUpdates_; });
}

// The connect thread goes on from there: see MayConnect.
bool OmbrelCore::EndIfDeviceLost() {
  if (!renderer_->IsDeviceLost()) return false;
  client_.DropConnection();
  return true;
}

// Once per connection, ahead of its first frame.
void OmbrelCore::SendFrameSharingInfo() {
  if (!client_.TakeNewConnection()) return;
  client_.Send(LinkMessageType::kFrameSharingInfo,
               MakeFrameSharingInfo(CurrentProcessId(), renderer_->Sharing(), sharing_.Name()));
}

bool OmbrelCore::AcquireNextTexture() {
  currentTexture_ = (currentTexture_ + 1) % 2;
  lastAcquireSucceeded_ = renderer_->AcquireOutput(currentTexture_, AcquireTimeoutMs());
  return lastAcquireSucceeded_;
}

// A new texture may hold what was in the memory before, and a frame may bring nothing to copy.
void OmbrelCore::ClearIfUndefined() {
  bool& isUndefined = isUndefined_[static_cast<std::size_t>(currentTexture_)];
  if (!lastAcquireSucceeded_ || !isUndefined) return;
  isUndefined = false;
  renderer_->ClearOutput(currentTexture_);
}

std::uint32_t OmbrelCore::AcquireTimeoutMs() const { return KeyedMutexTimeoutMs(framePeriodMs_); }

void OmbrelCore::WaitForNextFrame() {
  const std::uint32_t seen = linkDropped_.Generation();
  const SubmissionGate::Pass pass(pacing_);
  if (!pass) return;
  const std::int64_t begin = PerformanceCounter();
  const double remaining = RemainingMs(framePeriodMs_, begin - lastPacingEnd_, counterFrequency_);
  const std::uint32_t sleepMs = SleepPartMs(remaining);
  const bool released = sleepMs > 0 && linkDropped_.WaitFor(seen, sleepMs);
  if (!released) {
    SleepBelowMs(SleepRestMs(RemainingMs(remaining, PerformanceCounter() - begin, counterFrequency_)));
    const double left = RemainingMs(remaining, PerformanceCounter() - begin, counterFrequency_);
    const std::int64_t spinBegin = PerformanceCounter();
    while (left > 0.0 && !IsSpinOver(PerformanceCounter() - spinBegin, counterFrequency_, left)) {
    }
  }
  lastPacingEnd_ = PerformanceCounter();
}

}  // namespace ombrel
