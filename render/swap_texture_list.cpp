#include "render/swap_texture_list.h"

#include <algorithm>
#include <iterator>
#include <mutex>

namespace ombrel {

void SwapTextureList::Add(const SwapTexture& texture, std::uint32_t processId, std::uint32_t setId) {
  const std::lock_guard lock(mutex_);
  records_.push_back({texture.handle, texture.texture, processId, setId});
}

std::uint32_t SwapTextureList::FindSet(std::uint64_t handle) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find(records_, handle, &Record::handle);
  return found != records_.end() ? found->setId : kNoSet;
}

void SwapTextureList::RemoveSet(std::uint32_t setId, const OnRemoved& onRemoved) {
  RemoveIf([=](const Record& record) { return record.setId == setId; }, onRemoved);
}

void SwapTextureList::RemoveProcess(std::uint32_t processId, const OnRemoved& onRemoved) {
  RemoveIf([=](const Record& record) { return record.processId == processId; }, onRemoved);
}

void SwapTextureList::RemoveIf(const std::function<bool(const Record&)>& matches, const OnRemoved& onRemoved) {
  std::vector<Record> removed;
  {
    const std::lock_guard lock(mutex_);
    std::ranges::copy_if(records_, std::back_inserter(removed), matches);
    std::erase_if(records_, matches);
  }
  // Without the lock: letting a texture go is Direct3D's work.
  for (auto record = removed.rbegin(); record != removed.rend(); ++record) {
    record->texture.reset();
    onRemoved(record->handle);
  }
}

}  // namespace ombrel
