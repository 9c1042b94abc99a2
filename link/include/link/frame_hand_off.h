#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "link/companion_pipe_client.h"
#include "link/frame_pacer.h"
#include "link/frame_renderer.h"
#include "link/frame_sharing.h"
#include "link/submission_gate.h"
#include "platform/sync.h"

namespace ombrel {

// Hands the runtime's frames to the companion. Double buffering: of the two output textures the driver draws into the
// one whose keyed mutex it holds, while the companion may read the other. Frames come on the runtime's threads, which
// the submission gate lets in only while streaming is active.
class FrameHandOff {
 public:
  // All of them must outlive it.
  FrameHandOff(IFrameRenderer& renderer, const FramePacer& pacer, FrameSharing& sharing, CompanionPipeClient& client);

  // Setting up and its undoing: one thread at a time, the output textures exist.
  // Ahead of the textures: poses that come while they are made count for the connection that they are made for.
  void ResetCounters();
  // Takes the first output. From then on frames are let in, unless the link has dropped meanwhile.
  void StartStreaming();
  // Waits for the hand-offs under way, so that none of them ever meets the next connection.
  void EndStreaming();

  // Direct mode: composes the layers into the current output and passes it to the companion. Empties the list, unless
  // the link is down (compatibility.md, C39). Waits two frame periods at most, two seconds in any case.
  void HandOffLayers(std::uint64_t syncTexture, std::vector<LayerRecord>& layers, const FramePose& pose);
  // Virtual display: copies one finished texture and passes it on likewise, then waits until a pose has come that no
  // frame answers yet, or the link goes down.
  void HandOffTexture(std::uint64_t texture);

  // Reader thread: another pose has come.
  void CountTrackingUpdate();

  // Any thread. A lost graphics device ends the connection: the connect thread goes on from there.
  [[nodiscard]] bool EndIfDeviceLost();

 private:
  void SendFrameSharingInfo();
  void PassOn();
  bool ReleaseCurrentTexture();
  bool AcquireNextTexture();
  void ClearIfUndefined();

  IFrameRenderer& renderer_;
  const FramePacer& pacer_;
  FrameSharing& sharing_;
  CompanionPipeClient& client_;

  std::atomic<std::int32_t> currentTexture_{0};  // the output that the driver holds
  std::atomic<bool> lastAcquireSucceeded_{false};
  std::array<bool, 2> isUndefined_{};  // outputs that nobody has drawn into yet

  // Open while streaming is active: from a completed connection set-up until the link drops.
  SubmissionGate streamingActive_;
  Mutex stateMutex_;
  Condition stateChanged_;
  // Compared signed: a connection's first frame, which takes the count from -1 to 0, answers no pose (compatibility.md,
  // C49).
  std::atomic<std::int32_t> submittedFrames_{0};
  std::atomic<std::int32_t> trackingUpdates_{0};
};

}  // namespace ombrel
