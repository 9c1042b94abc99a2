#include "companion/frame_turns.h"

namespace companion {

TurnResult FrameTurns::Next(std::uint32_t timeoutMs) {
  const LockResult first = locks_.Acquire(index_, seenHeld_ ? timeoutMs : 0);
  if (first == LockResult::Failed) return TurnResult::Failed;
  if (first == LockResult::Acquired) return TakeFree();
  if (seenHeld_) return TurnResult::NoFrame;
  seenHeld_ = true;
  const LockResult second = locks_.Acquire(index_, timeoutMs);
  if (second == LockResult::Failed) return TurnResult::Failed;
  return second == LockResult::Acquired ? TurnResult::FrameHeld : TurnResult::NoFrame;
}

TurnResult FrameTurns::TakeFree() {
  if (seenHeld_ || DriverHoldsOther()) return TurnResult::FrameHeld;
  locks_.Release(index_);
  return TurnResult::NoFrame;
}

bool FrameTurns::DriverHoldsOther() {
  const LockResult other = locks_.Acquire(1 - index_, 0);
  if (other == LockResult::Acquired) locks_.Release(1 - index_);
  return other == LockResult::TimedOut;
}

void FrameTurns::Done() {
  locks_.Release(index_);
  index_ = 1 - index_;
  seenHeld_ = false;
}

}  // namespace companion
