#include "stress_companion.h"

#include <algorithm>
#include <chrono>

#include "support/background.h"
#include "support/tell_tale.h"

namespace ombrel::test {

bool StressCompanion::SendThrough(std::uint32_t messages, bool wantsHaptics) {
  const std::uint32_t announcements = done_.announcements, haptics = done_.haptics;
  if (!companion_.Connect()) return false;
  hangingUp_ = false;
  Background reader([this] { ReadUntilTold(); });
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  bool isAnswered = false, isSent = true;
  for (std::uint32_t sent = 0; isSent && (sent < messages || !isAnswered); ++sent) {
    isSent = SendNext() && std::chrono::steady_clock::now() < deadline;
    isAnswered = done_.announcements > announcements && (!wantsHaptics || done_.haptics > haptics);
  }
  hangingUp_ = true;
  const bool hasRead = reader.Finishes();
  companion_.Disconnect();
  return isSent && hasRead;
}

bool StressCompanion::SendNext() {
  const std::uint32_t number = number_++;
  switch (number % 16) {
    case 3:
    case 9: {
      ++done_.controllerUpdates;
      const std::uint32_t known = std::min(1 + number / 64, kControllers);
      return companion_.Send(10, ControllerUpdate(number / 3 % known, number));
    }
    case 5:
      ++done_.others;
      // Fast enough that nobody waits long for the end of a frame.
      return companion_.Send(9, Bytes().U32(500 + number % 1000));
    case 11:
      ++done_.others;
      return companion_.Send(number % 32 < 16 ? 8 : 3);
    default:
      ++done_.headUpdates;
      return companion_.Send(4, HeadUpdate(done_.headUpdates - 1));
  }
}

void StressCompanion::ReadUntilTold() {
  while (!hangingUp_) {
    if (!companion_.in.HasData(5)) continue;
    const auto message = companion_.Receive();
    if (!message) break;
    const bool isAnnouncement = message->type == 2 && message->payload.size() == 76;
    const bool isPulse = message->type == 11 && message->payload.size() == 12;
    if (isAnnouncement) ++done_.announcements;
    if (isPulse && std::to_integer<std::uint32_t>(message->payload[0]) < kControllers) {
      ++done_.haptics;
    } else if (!isAnnouncement) {
      ++done_.wrongMessages;
    }
  }
}

}  // namespace ombrel::test
