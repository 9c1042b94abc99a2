#pragma once

#include <string>

#include "companion/pose_history.h"
#include "companion/unique_handle.h"
#include "ombrel/protocol.h"

namespace companion {

// The driver's memory block: the pose beside each output texture. Read a slot only while its texture is held. Let go of
// the block when the connection ends. One thread.
class SharedBlock {
 public:
  // False when no block of that name exists.
  bool Open(const std::string& name);
  void Close();
  ~SharedBlock() { Close(); }
  SharedBlock() = default;
  SharedBlock(const SharedBlock&) = delete;
  SharedBlock& operator=(const SharedBlock&) = delete;

  // The slot of texture 0 or 1; all zero when the block is not open.
  PoseSlot ReadSlot(int index) const;

 private:
  UniqueHandle mapping_;
  const OmbrelPoseBlock* view_ = nullptr;
};

}  // namespace companion
