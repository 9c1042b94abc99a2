#pragma once

#include <cstdint>
#include <memory>

#include "link/companion_pipe_client.h"
#include "link/frame_hand_off.h"
#include "link/frame_pacer.h"
#include "link/frame_renderer.h"
#include "link/frame_sharing.h"
#include "link/listeners.h"
#include "link/submission_gate.h"
#include "platform/sync.h"

namespace ombrel {

// The headset's end of the link: owns the pipes, the hand-off of frames and what they need, sets each connection up for
// frames, and has a lost graphics device replaced before the next. One per headset.
class OmbrelCore final : public IFramerateUpdatedListener,
                         public IConnectionStateChangedListener,
                         public ITrackingUpdatedListener {
 public:
  explicit OmbrelCore(std::unique_ptr<IFrameRenderer> renderer);
  ~OmbrelCore() { StopLink(); }
  OmbrelCore(const OmbrelCore&) = delete;
  OmbrelCore& operator=(const OmbrelCore&) = delete;

  // Server thread. Makes the shared objects; once, whatever the number of calls.
  void SetUp();
  // Server thread, once, when all who are to hear of the companion have been added to the client's listeners.
  void StartLink();
  // Server thread. Ends the link's threads, releases threads that are blocked in a hand-off or a pacing wait and waits
  // for them: when it returns, nobody is in here. At most about two seconds, when a keyed mutex is waited for, or for as
  // long as a graphics device takes to be made.
  void StopLink();

  // Server thread. Gives the renderer its output, unless it has one, and lets a companion that is connected already
  // have frames.
  void PrepareOutput(const OutputConfiguration& configuration);

  [[nodiscard]] CompanionPipeClient& Client() { return client_; }
  [[nodiscard]] IFrameRenderer& Renderer() { return *renderer_; }
  [[nodiscard]] FramePacer& Pacer() { return pacer_; }
  [[nodiscard]] FrameHandOff& Frames() { return frames_; }
  // Held by the frame components while a call of the runtime is in them: StopLink waits for these, too. Closed once the
  // link has stopped: there is nothing to be done any more.
  [[nodiscard]] SubmissionGate& Calls() { return calls_; }

  void OnFramerateUpdated(std::uint32_t framesPerSecond) override { pacer_.SetFramesPerSecond(framesPerSecond); }
  void OnConnectionStateChanged() override;
  void OnTrackingUpdated() override { frames_.CountTrackingUpdate(); }

 private:
  [[nodiscard]] bool MayConnect();
  void SetUpConnection();
  [[nodiscard]] bool CreateOutputs();
  void EndStreaming();

  std::unique_ptr<IFrameRenderer> renderer_;
  FramePacer pacer_;
  FrameSharing sharing_;
  FrameHandOff frames_;
  SubmissionGate calls_;

  Mutex setUpMutex_;             // one set-up, or its undoing, at a time; taken before the hand-off's stateMutex_
  std::int64_t nextRemake_ = 0;  // performance counter: a lost device is not made anew before
  bool setUpPending_ = false;
  bool outputConfigured_ = false;
  bool initialised_ = false;

  CompanionPipeClient client_;  // last, so that its threads never meet a core half made or half gone
};

}  // namespace ombrel
