#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "link/frame_renderer.h"
#include "link/wire.h"
#include "platform/named_objects.h"
#include "platform/owned_handle.h"

namespace ombrel {

// 58 characters out of 0-9, A-Z and a-z, drawn with the standard library's `rand`, unseeded.
[[nodiscard]] std::string MakeFrameSharingName();

inline constexpr std::int32_t kFrameSharingBlockSize = 128;

// Where slot 0 or 1 begins in a block of `blockSize` bytes.
[[nodiscard]] constexpr std::int32_t SlotOffset(std::int32_t blockSize, std::int32_t slot) {
  return blockSize / 2 * slot;
}

// The named objects in which the companion finds each frame's pose: a block with one slot per output texture, and two
// mutexes that nobody waits on (compatibility.md, C15). A block that could not be made is silently done without.
class FrameSharing {
 public:
  // Server thread, once.
  void Create();

  // The thread that holds the output texture of that index.
  void WriteSlot(std::int32_t slot, const FramePose& pose);

  [[nodiscard]] const std::string& Name() const { return frameSharingName_; }

 private:
  std::string frameSharingName_;
  NamedMemory block_;
  OwnedHandle frameMutex0_;
  OwnedHandle frameMutex1_;
};

// The announcement of the output textures, with the low halves of their handles (compatibility.md, C22).
[[nodiscard]] FrameSharingInfo MakeFrameSharingInfo(std::uint32_t processId, const OutputSharing& outputs,
                                                    const std::string& name);

}  // namespace ombrel
