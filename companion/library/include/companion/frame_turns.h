#pragma once

#include <cstdint>

namespace companion {

enum class LockResult { Acquired, TimedOut, Failed };

// The two locks that output textures are passed by. Index 0 or 1.
class FrameLocks {
 public:
  virtual ~FrameLocks() = default;
  virtual LockResult Acquire(int index, std::uint32_t timeoutMs) = 0;
  virtual void Release(int index) = 0;
};

enum class TurnResult { FrameHeld, NoFrame, Failed };

// Follows the driver's alternation 0, 1, 0, ... and tells finished frames from old ones without looking at pixels:
// the driver always holds the texture that it draws next, so a free texture is new when it was seen held before,
// or when the other one is held now. When both are free the driver is between two frames, or gone.
// For one thread.
class FrameTurns {
 public:
  explicit FrameTurns(FrameLocks& locks) : locks_(locks) {}

  // Waits at most `timeoutMs` for the next frame. On FrameHeld the lock of Index() is held until Done().
  TurnResult Next(std::uint32_t timeoutMs);
  // Gives the texture back and turns to the other one.
  void Done();

  int Index() const { return index_; }

 private:
  TurnResult TakeFree();
  bool DriverHoldsOther();

  FrameLocks& locks_;
  int index_ = 0;
  bool seenHeld_ = false;
};

}  // namespace companion
