#pragma once

#include <string>

#include "base/owned_handle.h"
#include "companion/pose_history.h"

namespace bench {

// The driver's 128-byte block: the pose beside each output texture. Read a slot only while its texture is held.
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
  OwnedHandle mapping_;
  const void* view_ = nullptr;
};

}  // namespace bench
