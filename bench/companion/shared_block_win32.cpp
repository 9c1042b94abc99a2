#include "companion/shared_block.h"

#include <cstring>

namespace bench {
namespace {

constexpr std::size_t kBlockBytes = 128;
constexpr std::size_t kSlotBytes = 64;

}  // namespace

bool SharedBlock::Open(const std::string& name) {
  Close();
  mapping_ = OwnedHandle(OpenFileMappingA(FILE_MAP_READ, FALSE, name.c_str()));
  if (mapping_) view_ = MapViewOfFile(mapping_.Get(), FILE_MAP_READ, 0, 0, kBlockBytes);
  return view_ != nullptr;
}

void SharedBlock::Close() {
  if (view_ != nullptr) UnmapViewOfFile(view_);
  view_ = nullptr;
  mapping_.Reset();
}

PoseSlot SharedBlock::ReadSlot(int index) const {
  PoseSlot slot{};
  static_assert(sizeof(slot) == kSlotBytes);
  if (view_ == nullptr) return slot;
  const auto* block = static_cast<const unsigned char*>(view_);
  std::memcpy(slot.data(), block + kSlotBytes * static_cast<std::size_t>(index), kSlotBytes);
  return slot;
}

}  // namespace bench
