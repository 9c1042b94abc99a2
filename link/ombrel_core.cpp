#include "link/ombrel_core.h"

#include <mutex>
#include <utility>

#include "link/frame_pacing.h"
#include "platform/clock.h"

namespace ombrel {

OmbrelCore::OmbrelCore(std::unique_ptr<IFrameRenderer> renderer)
    : counterFrequency_(PerformanceFrequency()),
      renderer_(std::move(renderer)),
      framePeriodMs_(FramePeriodMs(framesPerSecond_.load())) {
  pacing_.Open();
  calls_.Open();
}

void OmbrelCore::SetUp() {
  if (initialised_) return;
  sharing_.CreateBlock();
  client_.AddListener(static_cast<IConnectionStateChangedListener*>(this));
  client_.AddListener(static_cast<IFramerateUpdatedListener*>(this));
  client_.AskBeforeConnecting([this] { return MayConnect(); });
  sharing_.CreateMutexes();
  initialised_ = true;
}

void OmbrelCore::StartLink() { client_.Start(); }

void OmbrelCore::StopLink() {
  pacing_.Close();
  linkDropped_.WakeAll();
  client_.Stop();
  {
    const std::lock_guard setUp(setUpMutex_);
    EndStreaming();
  }
  pacing_.Drain();
  calls_.Close();
  calls_.Drain();
}

void OmbrelCore::PrepareOutput(const OutputConfiguration& configuration) {
  const std::lock_guard setUp(setUpMutex_);
  if (!renderer_->IsReady()) {
    renderer_->Configure(configuration);
    outputConfigured_ = true;
    if (!CreateOutputs()) return;  // the next connection may have more luck
  }
  SetUpConnection();
}

// On the connect thread while there is no connection, and so no hand-off: the device may be replaced.
bool OmbrelCore::MayConnect() {
  const std::lock_guard setUp(setUpMutex_);
  if (!renderer_->IsDeviceLost()) return true;
  const std::int64_t now = PerformanceCounter();
  if (now < nextRemake_) return false;
  nextRemake_ = now + counterFrequency_;  // a second
  return renderer_->RemakeDevice();
}

void OmbrelCore::OnConnectionStateChanged() {
  const std::lock_guard setUp(setUpMutex_);
  if (!client_.IsConnected()) {
    EndStreaming();
    return;
  }
  setUpPending_ = true;
  SetUpConnection();
}

// On the connect thread, or, when the companion was there before the output, on the server thread. setUpMutex_ is held,
// stateMutex_ is not: poses go on while textures are made.
void OmbrelCore::SetUpConnection() {
  if (!setUpPending_ || !outputConfigured_) return;
  {
    // Ahead of the textures: poses that come while they are made count for this connection.
    const std::lock_guard lock(stateMutex_);
    submittedFrames_ = -1;
    trackingUpdates_ = 0;
  }
  // Not whether the renderer is ready: textures that could not be made for one connection may be for the next.
  if (!CreateOutputs()) return;
  setUpPending_ = false;
  isUndefined_.fill(true);
  currentTexture_ = 1;
  AcquireNextTexture();
  ClearIfUndefined();
  const std::lock_guard lock(stateMutex_);
  // A link that dropped meanwhile is reported next, and its frames are not to be taken for those of another.
  if (client_.IsConnected()) streamingActive_.Open();
  stateChanged_.NotifyAll();
}

// Without outputs no hand-off comes that would see a loss. setUpMutex_ is held.
bool OmbrelCore::CreateOutputs() {
  if (renderer_->CreateOutputTextures()) return true;
  static_cast<void>(EndIfDeviceLost());
  return false;
}

// Waits for the hand-offs under way, so that none of them ever meets the next connection. setUpMutex_ is held.
void OmbrelCore::EndStreaming() {
  setUpPending_ = false;
  {
    const std::lock_guard lock(stateMutex_);
    streamingActive_.Close();
    stateChanged_.NotifyAll();
  }
  linkDropped_.WakeAll();
  streamingActive_.Drain();
}

void OmbrelCore::OnFramerateUpdated(std::uint32_t framesPerSecond) {
  framesPerSecond_ = framesPerSecond;
  framePeriodMs_ = FramePeriodMs(framesPerSecond);
}

void OmbrelCore::OnTrackingUpdated() {
  const std::lock_guard lock(stateMutex_);
  ++trackingUpdates_;
  stateChanged_.NotifyAll();
}

}  // namespace ombrel
