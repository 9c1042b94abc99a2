#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "render/headset_renderer.h"

namespace ombrel {

// The runtime's swap textures, which belong together in sets of three and to a process each. One thread at a
// time.
class SwapTextureList {
 public:
  static constexpr std::uint32_t kNoSet = 0xFFFFFFFF;

  void Add(const SwapTexture& texture, std::uint32_t processId, std::uint32_t setId);
  // The set of the first record with that handle, or kNoSet.
  [[nodiscard]] std::uint32_t FindSet(std::uint64_t handle) const;

  // Takes out the records of a set, or of a process, from the last to the first; `onRemoved` gets each one's handle
  // when its texture has been let go.
  using OnRemoved = std::function<void(std::uint64_t handle)>;
  void RemoveSet(std::uint32_t setId, const OnRemoved& onRemoved);
  void RemoveProcess(std::uint32_t processId, const OnRemoved& onRemoved);

 private:
  struct Record {
    std::uint64_t handle;
    std::shared_ptr<void> texture;
    std::uint32_t processId;
    std::uint32_t setId;
  };
  void RemoveIf(const std::function<bool(const Record&)>& matches, const OnRemoved& onRemoved);

  std::vector<Record> records_;
};

}  // namespace ombrel
