// What the reader thread does with the bytes that come in.
#include "link/companion_pipe_client.h"
#include "link/session_shutdown.h"
#include "platform/clock.h"
#include "platform/guarded.h"

namespace ombrel {

bool CompanionPipeClient::ReadAndDispatch() {
  const std::span<std::byte> space = framer_.FreeSpace();
  std::size_t got = 0;
  // Back after each read, even an empty one: a companion that goes on writing nothing must not keep this thread.
  if (!readPipe_.ReadSome(space.data(), space.size(), got)) return false;
  framer_.Filled(got);
  MessageFramer::Message message;
  MessageFramer::Result result = framer_.Next(message);
  while (result == MessageFramer::Result::kMessage && IsRunning()) {
    Dispatch(message);
    result = framer_.Next(message);
  }
  return result == MessageFramer::Result::kNeedMore;
}

void CompanionPipeClient::Dispatch(const MessageFramer::Message& message) try {
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

void CompanionPipeClient::OnTrackingUpdate(std::span<const std::byte> payload) {
  const HeadPoseTracker::Outcome outcome = headPose_.Apply(payload, TickMilliseconds());
  if (outcome == HeadPoseTracker::Outcome::kTooShort) return;
  if (outcome == HeadPoseTracker::Outcome::kPublished) publishedPose_.StoreAlone(headPose_.Record());
  hasTrackingData_.store(true, std::memory_order_release);
  // One by one: the pose is counted even if the runtime would not have it.
  for (auto* listener : trackingListeners_) Guarded([=] { listener->OnTrackingUpdated(); });
}

void CompanionPipeClient::OnFramerateUpdate(std::span<const std::byte> payload) {
  if (payload.size() < sizeof(std::uint32_t)) return;
  const auto framesPerSecond = ReadRecord<std::uint32_t>(payload);
  for (auto* listener : framerateListeners_) Guarded([=] { listener->OnFramerateUpdated(framesPerSecond); });
}

void CompanionPipeClient::OnControllerUpdate(std::span<const std::byte> payload) {
  if (payload.size() < sizeof(ControllerUpdate)) return;
  for (auto* listener : controllerListeners_) {
    const auto record = ReadRecord<ControllerUpdate>(payload);
    listener->OnControllerUpdated(&record);
  }
}

}  // namespace ombrel
