#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "devices/controller_device.h"
#include "platform/append_only_list.h"

namespace ombrel {

// The controllers that the companion has reported, by their ids. Entries are only ever added, by the link's reader
// thread, while the server thread may walk them: no lock, and nobody sees half an entry.
class ControllerRegistry {
 public:
  // Reader thread.
  [[nodiscard]] ControllerDevice* Find(std::uint32_t controllerId) const;
  // Throws std::bad_alloc without having added anything.
  ControllerDevice& Add(std::uint32_t controllerId, std::unique_ptr<ControllerDevice> device);

  // Any thread. The first device with that property container, or null.
  [[nodiscard]] ControllerDevice* FindByContainer(vr::PropertyContainerHandle_t container) const;

  // While no link runs: the devices' way to the companion is gone.
  void ForgetLinks();
  // While no link runs: from here on no id is known. The devices stay, since a runtime may still ask them.
  void Retire();

 private:
  // The reader thread's, both: all that were ever made, and those that are known.
  std::vector<std::unique_ptr<ControllerDevice>> controllers_;
  std::unordered_map<std::uint32_t, ControllerDevice*> known_;
  AppendOnlyList<ControllerDevice*> walk_;
};

}  // namespace ombrel
