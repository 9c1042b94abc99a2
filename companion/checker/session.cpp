#include "checker/session.h"

#include <ombrel/protocol.h>

#include <algorithm>
#include <set>
#include <utility>

#include "frames.h"

namespace checker {
namespace {

constexpr std::uint32_t kWaitTimeout = 0x102;
constexpr std::uint32_t kPipeBusy = 231;

class Builder {
 public:
  void Take(const Event& event);
  Session Finish();

 private:
  void TakePipe(const Event& event);
  void Open(const Event& event);
  void OpenFirst(const Event& event);
  void Close(const Event& event);
  void Read(const Event& event);
  void Written(const Event& event);
  void Drained(const Event& event);
  void TakeProcess(const Event& event);
  void TakeDriverTexture(const Event& event);
  void TakeCompanionTexture(const Event& event);
  void Acquired(const Event& event);
  void Released(const Event& event);
  Connection* Current() { return session_.connections.empty() ? nullptr : &session_.connections.back(); }
  Hold* Held(std::uint32_t handle);

  Session session_;
  MessageCutter fromDriver_;
  std::uint64_t writtenBytes_ = 0;
};

void Builder::Take(const Event& event) {
  if (session_.begin == 0) session_.begin = event.When();
  session_.end = std::max(session_.end, event.When());
  if (event.pipe != Pipe::kNone) {
    TakePipe(event);
  } else if (event.side == Side::kDriver) {
    TakeDriverTexture(event);
  } else {
    TakeCompanionTexture(event);
  }
  TakeProcess(event);
}

// Other textures with keyed mutexes are the companion's own affair.
Session Builder::Finish() {
  std::set<std::uint32_t> announced;
  for (const Connection& connection : session_.connections) {
    const auto announcement = AnnouncementOf(connection);
    if (announcement) announced.insert(announcement->handles.begin(), announcement->handles.end());
  }
  const auto isOther = [&](const auto& use) { return !announced.contains(use.handle); };
  std::erase_if(session_.holds, isOther);
  for (auto* calls : {&session_.refused, &session_.otherKeys, &session_.readsUnheld}) std::erase_if(*calls, isOther);
  return std::move(session_);
}

void Builder::TakePipe(const Event& event) {
  switch (event.kind) {
    case EventKind::kPipeOpened:
      return Open(event);
    case EventKind::kPipeClosed:
      return Close(event);
    case EventKind::kPipeRead:
      return Read(event);
    case EventKind::kPipeWritten:
      return Written(event);
    case EventKind::kPipeDrained:
      return Drained(event);
    default:
      return;
  }
}

void Builder::Open(const Event& event) {
  if (event.pipe == Pipe::kIn) return OpenFirst(event);
  Connection* const connection = Current();
  if (connection == nullptr) return;
  if (event.result == 0) {
    connection->opened = event.end;
  } else {
    ++connection->secondPipeFailures;
    connection->secondPipeError = event.result;
  }
}

void Builder::OpenFirst(const Event& event) {
  if (event.result == 0) {
    session_.connections.emplace_back().firstPipe = event.end;
    fromDriver_ = {};
    writtenBytes_ = 0;
  } else if (Connection* const last = Current(); last != nullptr && event.result == kPipeBusy) {
    last->busyUntil = event.end;
    if (!last->busySince) last->busySince = event.end;
  }
}

void Builder::Close(const Event& event) {
  if (Connection* const connection = Current(); connection != nullptr && !connection->closed) {
    connection->closed = event.end;
  }
}

void Builder::Read(const Event& event) {
  Connection* const connection = Current();
  if (connection == nullptr) return;
  auto messages = connection->unread.Take(event.bytes, event.end);
  std::move(messages.begin(), messages.end(), std::back_inserter(connection->toDriver));
  if (event.result == 0 || event.result == kOperationAborted || connection->outLost) return;
  connection->outLost = event.end;
  connection->outError = event.result;
}

void Builder::Written(const Event& event) {
  Connection* const connection = Current();
  if (connection == nullptr) return;
  const std::uint64_t before = writtenBytes_ - fromDriver_.Unfinished();
  writtenBytes_ += event.bytes.size();
  std::uint64_t end = before;
  for (Message& message : fromDriver_.Take(event.bytes, event.end)) {
    end += sizeof(OmbrelMessageHeader) + message.payload.size();
    connection->fromDriver.push_back({std::move(message), end, std::nullopt});
  }
  if (event.result != 0 && event.result != kOperationAborted && !connection->inLost) connection->inLost = event.end;
}

void Builder::Drained(const Event& event) {
  Connection* const connection = Current();
  if (connection == nullptr) return;
  connection->drainsSeen = true;
  for (DriverMessage& sent : connection->fromDriver) {
    if (!sent.read && sent.lastByte <= event.key) sent.read = event.end;
  }
}

void Builder::TakeProcess(const Event& event) {
  if (event.kind == EventKind::kProcessFound) session_.processFound = event.end;
  if (event.kind == EventKind::kDetached) {
    session_.detached = event.end;
    session_.connectedWhenDetached = event.result != 0;
  }
  if (event.kind == EventKind::kBlockLeft) session_.blockLeft = event.end;
  if (event.kind != EventKind::kProcessEnded) return;
  session_.processEnded = event.end;
  session_.exitCode = event.result;
}

// The recorder tries each acquire of the driver at once before it waits.
void Builder::TakeDriverTexture(const Event& event) {
  if (event.kind == EventKind::kReleased && event.result == 0) {
    session_.handedOver[event.subject].push_back(event.start);
  } else if (event.kind == EventKind::kAcquired && event.result == kWaitTimeout) {
    auto& times = event.timeoutMs == 0 ? session_.foundHeld : session_.driverTimeouts;
    times[event.subject].push_back(event.end);
  }
}

void Builder::TakeCompanionTexture(const Event& event) {
  if (event.kind == EventKind::kAcquired) Acquired(event);
  if (event.kind == EventKind::kReleased) Released(event);
  if (event.kind != EventKind::kTextureRead) return;
  if (Hold* const hold = Held(event.subject)) {
    ++hold->reads;
  } else {
    session_.readsUnheld.push_back({.when = event.end, .handle = event.subject});
  }
}

// WAIT_ABANDONED is what a companion gets when the driver has died: no fault of its own.
void Builder::Acquired(const Event& event) {
  constexpr std::uint32_t kWaitAbandoned = 0x80;
  const OddCall call{event.end, event.subject, event.key, event.result, false};
  if (event.key != OMBREL_KEYED_MUTEX_KEY) session_.otherKeys.push_back(call);
  if (event.result == 0) {
    session_.holds.push_back({.handle = event.subject, .from = event.end, .to = std::nullopt});
  } else if (event.result != kWaitTimeout && event.result != kWaitAbandoned) {
    session_.refused.push_back(call);
  }
}

void Builder::Released(const Event& event) {
  const OddCall call{event.start, event.subject, event.key, event.result, true};
  if (event.key != OMBREL_KEYED_MUTEX_KEY) session_.otherKeys.push_back(call);
  if (event.result != 0) return session_.refused.push_back(call);
  if (Hold* const hold = Held(event.subject)) hold->to = event.start;
}

Hold* Builder::Held(std::uint32_t handle) {
  const auto found = std::find_if(session_.holds.rbegin(), session_.holds.rend(),
                                  [handle](const Hold& hold) { return hold.handle == handle; });
  return found == session_.holds.rend() || found->to ? nullptr : &*found;
}

}  // namespace

Nanoseconds Connection::End(Nanoseconds recordingEnd) const {
  if (outLost) return *outLost;
  return closed.value_or(recordingEnd);
}

Session BuildSession(const std::vector<Event>& events) {
  Builder builder;
  for (const Event& event : events) builder.Take(event);
  return builder.Finish();
}

}  // namespace checker
