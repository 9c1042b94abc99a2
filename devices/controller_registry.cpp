#include "devices/controller_registry.h"

#include <algorithm>
#include <utility>

namespace ombrel {

std::size_t ControllerRegistry::SlotOf(std::uint32_t controllerId) const {
  // Fibonacci hashing: ids that count up, or differ in high bits alone, come apart.
  std::size_t slot = (controllerId * 0x9E3779B1U >> 8U) & (slots_.size() - 1);
  while (slots_[slot].device != nullptr && slots_[slot].controllerId != controllerId) {
    slot = (slot + 1) & (slots_.size() - 1);
  }
  return slot;
}

ControllerDevice* ControllerRegistry::Find(std::uint32_t controllerId) const {
  return slots_.empty() ? nullptr : slots_[SlotOf(controllerId)].device;
}

ControllerDevice& ControllerRegistry::Add(std::uint32_t controllerId, std::unique_ptr<ControllerDevice> device) {
  if (2 * (controllers_.size() + 1) > slots_.size()) Grow();
  ControllerDevice& added = *controllers_.emplace_back(std::move(device));
  try {
    walk_.Add(&added);
  } catch (...) {
    // Known, but never announced: so it would stay. Its next record is to find it unknown.
    controllers_.pop_back();
    throw;
  }
  slots_[SlotOf(controllerId)] = {controllerId, &added};
  return added;
}

void ControllerRegistry::Grow() {
  constexpr std::size_t kFewest = 16;
  std::vector<Slot> smaller(std::max(kFewest, 2 * slots_.size()));
  smaller.swap(slots_);
  for (const Slot& slot : smaller) {
    if (slot.device != nullptr) slots_[SlotOf(slot.controllerId)] = slot;
  }
}

ControllerDevice* ControllerRegistry::FindByContainer(vr::PropertyContainerHandle_t container) const {
  ControllerDevice* found = nullptr;
  walk_.ForEach([&](ControllerDevice* device) {
    if (found == nullptr && device->PropertyContainer() == container) found = device;
  });
  return found;
}

void ControllerRegistry::ForgetLinks() {
  walk_.ForEach([](ControllerDevice* device) { device->ForgetLink(); });
}

void ControllerRegistry::Retire() {
  walk_.Clear();
  slots_.clear();
}

}  // namespace ombrel
