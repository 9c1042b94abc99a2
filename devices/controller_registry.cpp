#include "devices/controller_registry.h"

#include <utility>

namespace ombrel {

ControllerDevice* ControllerRegistry::Find(std::uint32_t controllerId) const {
  const auto found = controllers_.find(controllerId);
  return found != controllers_.end() ? found->second.get() : nullptr;
}

ControllerDevice& ControllerRegistry::Add(std::uint32_t controllerId, std::unique_ptr<ControllerDevice> device) {
  ControllerDevice& added = *controllers_.insert_or_assign(controllerId, std::move(device)).first->second;
  walk_.Add(&added);
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

void ControllerRegistry::Clear() {
  walk_.Clear();
  controllers_.clear();
}

}  // namespace ombrel
