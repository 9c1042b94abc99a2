#include "link/ombrel_core.h"

#include <mutex>
#include <utility>

#include "platform/clock.h"

namespace ombrel {

OmbrelCore::OmbrelCore(std::unique_ptr<IFrameRenderer> renderer)
    : renderer_(std::move(renderer)), frames_(*renderer_, pacer_, sharing_, client_) {
  calls_.Open();
}

void OmbrelCore::SetUp() {
  if (initialised_) return;
  sharing_.Create();
  client_.AddListener(static_cast<IConnectionStateChangedListener*>(this));
  client_.AddListener(static_cast<IFramerateUpdatedListener*>(this));
  client_.AskBeforeConnecting([this] { return MayConnect(); });
  initialised_ = true;
}

void OmbrelCore::StartLink() { client_.Start(); }

void OmbrelCore::StopLink() {
  pacer_.Close();
  client_.Stop();
  {
    const std::lock_guard setUp(setUpMutex_);
    EndStreaming();
  }
  pacer_.Drain();
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
  nextRemake_ = now + PerformanceFrequency();  // a second
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

// On the connect thread, or, when the companion was there before the output, on the server thread. setUpMutex_ is held;
// poses go on while textures are made.
void OmbrelCore::SetUpConnection() {
  if (!setUpPending_ || !outputConfigured_) return;
  frames_.ResetCounters();
  // Not whether the renderer is ready: textures that could not be made for one connection may be for the next.
  if (!CreateOutputs()) return;
  setUpPending_ = false;
  frames_.StartStreaming();
}

// Without outputs no hand-off comes that would see a loss. setUpMutex_ is held.
bool OmbrelCore::CreateOutputs() {
  if (renderer_->CreateOutputTextures()) return true;
  static_cast<void>(frames_.EndIfDeviceLost());
  return false;
}

// setUpMutex_ is held.
void OmbrelCore::EndStreaming() {
  setUpPending_ = false;
  pacer_.EndWaits();
  frames_.EndStreaming();
}

}  // namespace ombrel
