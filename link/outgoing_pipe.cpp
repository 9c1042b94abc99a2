#include "link/outgoing_pipe.h"

#include <mutex>

#include "platform/clock.h"

namespace ombrel {
namespace {

bool HavePassed(std::uint32_t milliseconds, std::int64_t since) {
  return (PerformanceCounter() - since) * 1000 >= PerformanceFrequency() * std::int64_t{milliseconds};
}

}  // namespace

void OutgoingPipe::CancelStalledWrite() {
  const std::int64_t since = writingSince_.load(std::memory_order_acquire);
  if (since == 0 || !HavePassed(kStallMs, since)) return;
  cancelled_.store(true, std::memory_order_release);
  pipe_.CancelIo();
}

void OutgoingPipe::Close() {
  // A cancel that comes just before the write cancels nothing, so it is repeated until the writer is out.
  while (!mutex_.try_lock()) {
    pipe_.CancelIo();
    SleepMs(1);
  }
  pipe_.Close();
  admitted_ = false;
  broken_ = false;
  stalledAt_ = 0;
  mutex_.unlock();
}

void OutgoingPipe::Admit() {
  const std::lock_guard lock(mutex_);
  admitted_ = true;
}

OutgoingPipe::Result OutgoingPipe::Write(LinkMessageType type, std::span<const std::byte> payload) {
  const std::lock_guard lock(mutex_);
  if (!admitted_) return Result::kSent;
  if (IsPausing()) return Result::kStalled;
  cancelled_.store(false, std::memory_order_release);
  writingSince_.store(PerformanceCounter(), std::memory_order_release);
  const Result result = WriteParts(type, payload);
  writingSince_.store(0, std::memory_order_release);
  stalledAt_ = result == Result::kStalled ? PerformanceCounter() : 0;
  if (result == Result::kBroken) {
    admitted_ = false;
    broken_.store(true, std::memory_order_release);
  }
  return result;
}

bool OutgoingPipe::IsPausing() const { return stalledAt_ != 0 && !HavePassed(kPauseMs, stalledAt_); }

OutgoingPipe::Result OutgoingPipe::WriteParts(LinkMessageType type, std::span<const std::byte> payload) {
  const LinkMessageHeader header{static_cast<std::uint32_t>(payload.size()), static_cast<std::uint32_t>(type)};
  if (!pipe_.WriteAll(&header.length, sizeof(header.length))) {
    return cancelled_.load(std::memory_order_acquire) ? Result::kStalled : Result::kSent;
  }
  if (pipe_.WriteAll(&header.type, sizeof(header.type)) && pipe_.WriteAll(payload.data(), payload.size())) {
    return Result::kSent;
  }
  return Result::kBroken;
}

}  // namespace ombrel
