#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "devices/controller_registry.h"
#include "link/wire.h"
#include "quiet_runtime.h"

namespace ombrel::test {

// A number of controllers, known and activated, and records for them. For one thread.
class ControllerCase {
 public:
  explicit ControllerCase(std::uint32_t controllers);
  ~ControllerCase();
  ControllerCase(const ControllerCase&) = delete;
  ControllerCase& operator=(const ControllerCase&) = delete;

  // What link and provider do with a record's bytes.
  void Take(std::span<const std::byte> bytes) {
    const auto record = ReadRecord<ControllerUpdate>(bytes);
    registry_.Find(record.controllerId)->UpdateFromRecord(record);
  }

  // Bytes of a record for that controller. `turn` 0 and 1 differ in where it is and how far its trigger is pulled.
  [[nodiscard]] static std::vector<std::byte> Record(std::uint32_t controller, int turn);
  [[nodiscard]] std::uint64_t Poses() const { return host_.poses; }
  [[nodiscard]] std::uint64_t Updates() const { return context_.input.updates; }

 private:
  QuietContext context_;
  QuietHost host_;
  ControllerRegistry registry_;
};

}  // namespace ombrel::test
