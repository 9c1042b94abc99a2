#include "link/outgoing_pipe.h"

#include <algorithm>
#include <mutex>

#include "platform/clock.h"

namespace ombrel {
namespace {

constexpr std::uint32_t kCancelAgainMs = 2;

bool IsTooOld(std::int64_t madeAt) {
  return PerformanceCounter() - madeAt > OutgoingPipe::kLifeMs * PerformanceFrequency() / 1000;
}

}  // namespace

bool OutgoingPipe::StartWriting() {
  if (!writer_.Start([this] { WriteWaiting(); })) return false;
  const std::lock_guard lock(mutex_);
  isWriting_ = true;
  writingSince_ = PerformanceCounter();
  return true;
}

void OutgoingPipe::Close() {
  {
    const std::lock_guard lock(mutex_);
    isWriting_ = false;
    count_ = 0;
  }
  // A cancel that comes while the writer is between two writes cancels nothing, so it is repeated until it is out.
  do {
    pipe_.CancelIo();
  } while (!writer_.StopFor(kCancelAgainMs));
  pipe_.Close();
  broken_ = false;
}

void OutgoingPipe::Enqueue(LinkMessageType type, std::span<const std::byte> payload, std::int64_t madeAt) {
  {
    const std::lock_guard lock(mutex_);
    const std::size_t room = madeAt == kKept ? waiting_.size() : kMostWaiting;
    if (!isWriting_ || madeAt < writingSince_ || count_ >= room) return;
    Message& message = waiting_[(first_ + count_) % waiting_.size()];
    message.header = {static_cast<std::uint32_t>(payload.size()), static_cast<std::uint32_t>(type)};
    std::ranges::copy(payload, message.payload.begin());
    message.madeAt = madeAt;
    ++count_;
  }
  writer_.Notify();
}

void OutgoingPipe::WriteWaiting() {
  Message message;
  while (!IsBroken() && TakeNext(message)) {
    if (message.madeAt != kKept && IsTooOld(message.madeAt)) continue;
    if (!Write(message)) broken_.store(true, std::memory_order_release);
  }
}

bool OutgoingPipe::TakeNext(Message& message) {
  const std::lock_guard lock(mutex_);
  if (count_ == 0) return false;
  message = waiting_[first_];
  first_ = (first_ + 1) % waiting_.size();
  --count_;
  return true;
}

// In three pieces (compatibility.md, C16). False when the companion cannot go on with this connection: a part of the
// message is out and the rest could not follow, or one that may not be dropped found no way into a pipe that is whole.
// Otherwise a message of which nothing could be written is lost without notice (compatibility.md, C17).
bool OutgoingPipe::Write(const Message& message) {
  const LinkMessageHeader& header = message.header;
  if (!pipe_.WriteAll(&header.length, sizeof(header.length))) return message.madeAt != kKept || pipe_.IsPeerGone();
  return pipe_.WriteAll(&header.type, sizeof(header.type)) && pipe_.WriteAll(message.payload.data(), header.length);
}

}  // namespace ombrel
