#include "link/companion_pipe_reader.h"

#include "link/session_shutdown.h"
#include "platform/clock.h"
#include "platform/guarded.h"

namespace ombrel {
namespace {

// The record that is published before any other: see compatibility.md, C7.
LinkPoseRecord InitialPose() {
  LinkPoseRecord pose;
  pose.timestamp = TickMilliseconds();
  return pose;
}

}  // namespace

CompanionPipeReader::CompanionPipeReader() : headPose_(TickMilliseconds()), publishedPose_(InitialPose()) {}

void CompanionPipeReader::RemoveListeners() {
  trackingListeners_.clear();
  framerateListeners_.clear();
  controllerListeners_.clear();
}

bool CompanionPipeReader::ReadAndDispatch(PipeClient& pipe, const std::atomic<bool>& running) {
  const std::span<std::byte> space = framer_.FreeSpace();
  std::size_t got = 0;
  // Back after each read, even an empty one: a companion that goes on writing nothing must not keep this thread.
  if (!pipe.ReadSome(space.data(), space.size(), got)) return false;
  framer_.Filled(got);
  MessageFramer::Message message;
  MessageFramer::Result result = framer_.Next(message);
  while (result == MessageFramer::Result::kMessage && running.load(std::memory_order_acquire)) {
    Dispatch(message);
    result = framer_.Next(message);
  }
  return result == MessageFramer::Result::kNeedMore;
}

void CompanionPipeReader::Dispatch(const MessageFramer::Message& message) try {
  switch (static_cast<LinkMessageType>(message.type)) {
    case LinkMessageType::kTrackingUpdate:
      return OnTrackingUpdate(message.payload);
    case LinkMessageType::kRecenterRequest:
      return headPose_.Recenter();
    case LinkMessageType::kFramerateUpdate:
      return OnFramerateUpdate(message.payload);
    case LinkMessageType::kControllerUpdate:
      return OnControllerUpdate(message.payload);
    case LinkMessageType::kShutdownRequest:
      return EndRuntimeSession();
    case LinkMessageType::kFrameSharingInfo:
    case LinkMessageType::kHapticPulse:
      break;  // these go the other way
  }
} catch (...) {
  // Out of memory, most likely: this message is lost, the next one may do.
}

void CompanionPipeReader::OnTrackingUpdate(std::span<const std::byte> payload) {
  const HeadPoseTracker::Outcome outcome = headPose_.Apply(payload, TickMilliseconds());
  if (outcome == HeadPoseTracker::Outcome::kTooShort) return;
  if (outcome == HeadPoseTracker::Outcome::kPublished) publishedPose_.Store(headPose_.Record());
  hasTrackingData_.store(true, std::memory_order_release);
  // One by one: the pose is counted even if the runtime would not have it.
  for (auto* listener : trackingListeners_) Guarded([=] { listener->OnTrackingUpdated(); });
}

void CompanionPipeReader::OnFramerateUpdate(std::span<const std::byte> payload) {
  if (payload.size() < sizeof(std::uint32_t)) return;
  const auto framesPerSecond = ReadRecord<std::uint32_t>(payload);
  for (auto* listener : framerateListeners_) Guarded([=] { listener->OnFramerateUpdated(framesPerSecond); });
}

void CompanionPipeReader::OnControllerUpdate(std::span<const std::byte> payload) {
  if (payload.size() < sizeof(ControllerUpdate)) return;
  for (auto* listener : controllerListeners_) {
    const auto record = ReadRecord<ControllerUpdate>(payload);
    listener->OnControllerUpdated(&record);
  }
}

}  // namespace ombrel
