#include "devices/controller_registry.h"

#include <utility>

namespace ombrel {

ControllerDevice* ControllerRegistry::Find(std::uint32_t controllerId) const {
  const auto found = controllers_.find(controllerId);
  return found != controllers_.end() ? found->second.get() : nullptr;
}

ControllerDevice& ControllerRegistry::Add(std::uint32_t controllerId, std::unique_ptr<ControllerDevice> device) {
  const auto added = controllers_.insert_or_assign(controllerId, std::move(device)).first;
  try {
    walk_.Add(added->second.get());
  } catch (...) {
    // Known, but never announced: so it would stay. Its next record is to find it unknown.
    controllers_.erase(added);
    throw;
  }
  return *added->second;
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
  retired_.reserve(retired_.size() + controllers_.size());
  for (auto& [id, device] : controllers_) retired_.push_back(std::move(device));
  controllers_.clear();
}

}  // namespace ombrel
