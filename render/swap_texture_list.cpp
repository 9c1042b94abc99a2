#include "render/swap_texture_list.h"

#include <algorithm>
#include <iterator>

namespace ombrel {

void SwapTextureList::Add(const SwapTexture& texture, std::uint32_t processId, std::uint32_t setId) {
  records_.Update([&](std::vector<Record>& records) {
    records.push_back({texture.handle, texture.texture, processId, setId});
  });
}

std::uint32_t SwapTextureList::FindSet(std::uint64_t handle) const {
  return records_.Look([=](const std::vector<Record>& records) {
    const auto found = std::ranges::find(records, handle, &Record::handle);
    return found != records.end() ? found->setId : kNoSet;
  });
}

void SwapTextureList::RemoveSet(std::uint32_t setId, const OnRemoved& onRemoved) {
  RemoveIf([=](const Record& record) { return record.setId == setId; }, onRemoved);
}

void SwapTextureList::RemoveProcess(std::uint32_t processId, const OnRemoved& onRemoved) {
  RemoveIf([=](const Record& record) { return record.processId == processId; }, onRemoved);
}

void SwapTextureList::RemoveIf(const std::function<bool(const Record&)>& matches, const OnRemoved& onRemoved) {
  std::vector<Record> removed;
  records_.Update([&](std::vector<Record>& records) {
    removed.clear();
    std::ranges::copy_if(records, std::back_inserter(removed), matches);
    std::erase_if(records, matches);
  });
  for (auto record = removed.rbegin(); record != removed.rend(); ++record) {
    record->texture.reset();
    onRemoved(record->handle);
  }
}

}  // namespace ombrel
