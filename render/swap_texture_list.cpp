#include "render/swap_texture_list.h"

#include <algorithm>
#include <iterator>

namespace ombrel {

void SwapTextureList::Add(const SwapTexture& texture, std::uint32_t processId, std::uint32_t setId) {
  records_.push_back({texture.handle, texture.texture, processId, setId});
}

std::uint32_t SwapTextureList::FindSet(std::uint64_t handle) const {
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
  std::ranges::copy_if(records_, std::back_inserter(removed), matches);
  std::erase_if(records_, matches);
  for (auto record = removed.rbegin(); record != removed.rend(); ++record) {
    record->texture.reset();
    onRemoved(record->handle);
  }
}

}  // namespace ombrel
