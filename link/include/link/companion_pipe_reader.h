#pragma once

#include <atomic>
#include <cstddef>
#include <span>
#include <vector>

#include "link/head_pose_tracker.h"
#include "link/listeners.h"
#include "link/message_framer.h"
#include "platform/pipe.h"
#include "platform/seqlock.h"

namespace ombrel {

// What becomes of the companion's bytes: cuts them into messages, keeps the head's pose, and tells the listeners. What
// has been taken in outlives the connection that it came by.
class CompanionPipeReader {
 public:
  CompanionPipeReader();

  // While nobody reads.
  void AddListener(ITrackingUpdatedListener* listener) { trackingListeners_.push_back(listener); }
  void AddListener(IFramerateUpdatedListener* listener) { framerateListeners_.push_back(listener); }
  void AddListener(IControllerUpdatedListener* listener) { controllerListeners_.push_back(listener); }
  void RemoveListeners();
  // Forgets the half message that the last connection may have ended in.
  void BeginConnection() { framer_.Reset(); }

  // Reader thread. One read, and each message that it completes, for as long as `running`. False when the pipe has ended,
  // or when its messages cannot be told apart any more.
  [[nodiscard]] bool ReadAndDispatch(PipeClient& pipe, const std::atomic<bool>& running);

  // Any thread.
  [[nodiscard]] LinkPoseRecord PublishedPose() const { return publishedPose_.Load(); }
  [[nodiscard]] bool HasTrackingData() const { return hasTrackingData_.load(std::memory_order_acquire); }

 private:
  void Dispatch(const MessageFramer::Message& message);
  void OnTrackingUpdate(std::span<const std::byte> payload);
  void OnFramerateUpdate(std::span<const std::byte> payload);
  void OnControllerUpdate(std::span<const std::byte> payload);

  std::vector<ITrackingUpdatedListener*> trackingListeners_;
  std::vector<IFramerateUpdatedListener*> framerateListeners_;
  std::vector<IControllerUpdatedListener*> controllerListeners_;

  MessageFramer framer_;
  HeadPoseTracker headPose_;
  SeqLock<LinkPoseRecord> publishedPose_;
  std::atomic<bool> hasTrackingData_{false};
};

}  // namespace ombrel
