#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "server_driver_ombrel.h"
#include "support/fake_companion.h"
#include "support/hooked_runtime.h"
#include "support/journal.h"

namespace ombrel::test {

// A runtime with a base station, the provider, and a companion that offers nothing yet. The test's thread plays the
// runtime's server thread.
class ProviderTest : public testing::Test {
 protected:
  using Devices = std::vector<vr::ITrackedDeviceServerDriver*>;
  static constexpr std::uint32_t kBaseStation = 1, kController = 2;  // indices
  static constexpr std::uint32_t kControllerId = 7;

  ProviderTest();
  ~ProviderTest() override;

  // Init, with headset, base station and a controller activated, whose pose is at x = 2.
  void StartSession();
  // All that were announced, in order, from the first session on.
  [[nodiscard]] Devices Added() const;
  [[nodiscard]] static vr::DriverPose_t PoseOf(vr::ITrackedDeviceServerDriver& device);
  // Events that the next RunFrame finds: their type and the duration that they would have as a vibration.
  void RunFrameWithEventsOfController(const std::vector<std::pair<std::uint32_t, float>>& events);

  HookedRuntime host_;
  Journal log_;
  Journal poses_;  // indices
  FakeCompanion companion_;
  CServerDriver_Ombrel provider_;

 private:
  mutable std::mutex mutex_;
  Devices added_;
};

}  // namespace ombrel::test
