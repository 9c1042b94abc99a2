#include "frames.h"

#include <ombrel/protocol.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>

#include "findings.h"

namespace checker {

std::optional<Announcement> AnnouncementOf(const Connection& connection) {
  for (const DriverMessage& sent : connection.fromDriver) {
    OmbrelFrameSharingInfo info{};
    if (sent.message.type != OMBREL_FRAME_SHARING_INFO || sent.message.payload.size() < sizeof(info)) continue;
    std::memcpy(&info, sent.message.payload.data(), sizeof(info));
    return Announcement{sent.message.ended, {info.sharedHandle0, info.sharedHandle1}};
  }
  return std::nullopt;
}

FramePeriods::FramePeriods(const Session& session) : since_{{session.begin, kSecond / OMBREL_DEFAULT_FRAME_RATE}} {
  for (const Connection& connection : session.connections) {
    for (const Message& message : connection.toDriver) {
      OmbrelFramerateUpdate update{};
      if (message.type != OMBREL_FRAMERATE_UPDATE || message.payload.size() < sizeof(update)) continue;
      std::memcpy(&update, message.payload.data(), sizeof(update));
      const std::uint32_t rate = update.framesPerSecond;
      since_[message.ended] = rate == 0 ? kSecond : kSecond / rate;
    }
  }
}

Nanoseconds FramePeriods::At(Nanoseconds when) const {
  const auto after = since_.upper_bound(when);
  return after == since_.begin() ? after->second : std::prev(after)->second;
}

std::vector<ReadFrame> ReadFrames(const Session& session) {
  std::vector<ReadFrame> frames;
  std::map<std::uint32_t, Nanoseconds> lastRead;
  for (const Hold& hold : session.holds) {
    if (hold.reads == 0) continue;
    ReadFrame frame{&hold, std::nullopt};
    if (const auto given = session.handedOver.find(hold.handle); given != session.handedOver.end()) {
      const auto after = std::lower_bound(given->second.begin(), given->second.end(), hold.from);
      const bool any = after != given->second.begin();
      const auto before = lastRead.find(hold.handle);
      if (any && (before == lastRead.end() || *(after - 1) > before->second)) frame.handedOver = *(after - 1);
    }
    lastRead[hold.handle] = hold.from;
    frames.push_back(frame);
  }
  return frames;
}

}  // namespace checker
