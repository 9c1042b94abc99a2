#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "link/companion_pipe_client.h"
#include "link/frame_renderer.h"
#include "link/frame_sharing.h"
#include "link/listeners.h"
#include "link/submission_gate.h"
#include "platform/sync.h"

namespace ombrel {

// The headset's end of the link: the pipes, what is shared with the companion, and the hand-off of frames between the
// runtime's threads, the renderer and the companion. One per headset.
class OmbrelCore final : public IFramerateUpdatedListener,
                         public IConnectionStateChangedListener,
                         public ITrackingUpdatedListener {
 public:
  static constexpr std::uint32_t kInitialFramesPerSecond = 60;

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

  [[nodiscard]] CompanionPipeClient& Client() { return client_; }
  [[nodiscard]] IFrameRenderer& Renderer() { return *renderer_; }
  [[nodiscard]] std::int64_t CounterFrequency() const { return counterFrequency_; }

  // Held by the frame components while a call of the runtime is in them: StopLink waits for these, too. Closed once the
  // link has stopped: there is nothing to be done any more.
  [[nodiscard]] SubmissionGate& Calls() { return calls_; }

  // Frames per second, as the companion wants them.
  [[nodiscard]] std::uint32_t FramesPerSecond() const { return framesPerSecond_; }

  // Server thread. Gives the renderer its output, unless it has one, and lets a companion that is connected already
  // have frames.
  void PrepareOutput(const OutputConfiguration& configuration);

  // Direct mode, on the runtime's threads: composes the layers into the current output and passes it to the companion.
  // Empties the list, unless the link is down. Waits two frame periods at most, two seconds in any case.
  void HandOffLayers(std::uint64_t syncTexture, std::vector<LayerRecord>& layers, const FramePose& pose);
  // Virtual display, likewise: copies one finished texture, then waits until a pose has come that no frame answers yet,
  // or the link goes down.
  void HandOffTexture(std::uint64_t texture);
  // Sleeps, then spins, to the end of the frame period that began when the last wait ended. At most one second; ends
  // early when the link goes down.
  void WaitForNextFrame();

  void OnFramerateUpdated(std::uint32_t framesPerSecond) override;
  void OnConnectionStateChanged() override;
  void OnTrackingUpdated() override;

 private:
  [[nodiscard]] bool MayConnect();
  void SetUpConnection();
  [[nodiscard]] bool CreateOutputs();
  void EndStreaming();
  [[nodiscard]] bool EndIfDeviceLost();
  void SendFrameSharingInfo();
  bool AcquireNextTexture();
  void ClearIfUndefined();
  [[nodiscard]] std::uint32_t AcquireTimeoutMs() const;

  const std::int64_t counterFrequency_;
  std::unique_ptr<IFrameRenderer> renderer_;
  FrameSharing sharing_;

  std::atomic<std::int32_t> currentTexture_{0};  // the output that the driver holds
  std::atomic<std::uint32_t> framesPerSecond_{kInitialFramesPerSecond};
  std::atomic<double> framePeriodMs_;
  std::atomic<bool> lastAcquireSucceeded_{false};
  std::array<bool, 2> isUndefined_{};           // outputs that nobody has drawn into yet
  std::atomic<std::int64_t> lastPacingEnd_{0};  // performance counter

  // Open while streaming is active: from a completed connection set-up until the link drops.
  SubmissionGate streamingActive_;
  // Open until the link stops.
  SubmissionGate pacing_;
  SubmissionGate calls_;
  WakeSignal linkDropped_;

  Mutex stateMutex_;
  Condition stateChanged_;
  std::atomic<std::int32_t> submittedFrames_{0};
  std::atomic<std::int32_t> trackingUpdates_{0};

  Mutex setUpMutex_;             // one set-up, or its undoing, at a time; taken before stateMutex_
  std::int64_t nextRemake_ = 0;  // performance counter: a lost device is not made anew before
  bool setUpPending_ = false;
  bool outputConfigured_ = false;
  bool initialised_ = false;

  CompanionPipeClient client_;  // last, so that its threads never meet a core half made or half gone
};

}  // namespace ombrel
