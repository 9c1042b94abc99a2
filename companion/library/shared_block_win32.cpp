#include "companion/shared_block.h"

#include <cstring>

namespace companion {

bool SharedBlock::Open(const std::string& name) {
  Close();
  mapping_ = UniqueHandle(OpenFileMappingA(FILE_MAP_READ, FALSE, name.c_str()));
  if (mapping_)
    view_ = static_cast<const OmbrelPoseBlock*>(
        MapViewOfFile(mapping_.get(), FILE_MAP_READ, 0, 0, sizeof(OmbrelPoseBlock)));
  return view_ != nullptr;
}

void SharedBlock::Close() {
  if (view_ != nullptr) UnmapViewOfFile(view_);
  view_ = nullptr;
  mapping_.reset();
}

PoseSlot SharedBlock::ReadSlot(int index) const {
  PoseSlot slot{};
  if (view_ != nullptr) std::memcpy(slot.data(), &view_->slots[index], sizeof(slot));
  return slot;
}

}  // namespace companion
