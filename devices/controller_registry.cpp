#include "devices/controller_registry.h"

#include <utility>

namespace ombrel {

ControllerDevice* ControllerRegistry::Find(std::uint32_t controllerId) const {
  const auto found = known_.find(controllerId);
  return found != known_.end() ? found->second : nullptr;
}

ControllerDevice& ControllerRegistry::Add(std::uint32_t controllerId, std::unique_ptr<ControllerDevice> device) {
  ControllerDevice& added = *controllers_.emplace_back(std::move(device));
  try {
    known_.emplace(controllerId, &added);
    walk_.Add(&added);
  } catch (...) {
    // Or it would stay known and never be announced: its next record is to find it unknown.
    known_.erase(controllerId);
    controllers_.pop_back();
    throw;
  }
  return added;
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
  known_.clear();
}

}  // namespace ombrel
