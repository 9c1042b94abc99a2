#pragma once

#include <openvr_driver.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "runtime/fake_runtime.h"

namespace ombrel::test {

// What a companion's bytes bring about in the runtime, each list in order.
struct Effects {
  std::vector<vr::DriverPose_t> head;
  std::vector<std::pair<std::uint32_t, vr::DriverPose_t>> controllers;  // by the companion's id
  std::vector<std::uint32_t> announced;
  std::vector<std::pair<std::string, double>> inputs;  // "7 /input/trigger/value", a button's value is 0 or 1
  std::vector<float> framerates;
  std::size_t shutdowns = 0;
  bool connectionEnded = false;

  // What came behind `before`, which is how these effects begin.
  [[nodiscard]] Effects Behind(const Effects& before) const;
};

// A session of the driver with one connection that brings these bytes. Controllers are activated as soon as they are
// announced.
[[nodiscard]] Effects EffectsOf(const std::vector<std::byte>& bytes);

}  // namespace ombrel::test
