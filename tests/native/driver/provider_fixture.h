#pragma once

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "companion/controller_record.h"
#include "runtime/fake_runtime.h"
#include "server_driver_ombrel.h"
#include "support/fake_companion.h"
#include "support/process_list.h"
#include "support/wait.h"

namespace ombrel::test {

// A runtime, the provider, and a companion that is in the system's list of processes and offers no pipes yet. The test's
// thread plays the runtime's server thread.
class ProviderTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  static constexpr std::uint32_t kBaseStation = 1, kController = 2;  // indices

  ~ProviderTest() override;

  [[nodiscard]] int Init() { return provider_.Init(&runtime_); }
  // Init, then headset and base station are activated.
  void Start();
  // The same, with the companion's pipes open.
  void Connect();

  template <typename Value>
  void Set(const char* key, Value value) {
    runtime_.Settings().Set("driver_ombrel", key, value);
  }
  // All that were announced, from the first session on.
  [[nodiscard]] std::vector<bench::AddedDevice> Added() { return runtime_.Host().Added(); }
  [[nodiscard]] vr::ITrackedDeviceServerDriver& Device(std::size_t number) { return *Added().at(number).driver; }
  [[nodiscard]] static vr::DriverPose_t PoseOf(vr::ITrackedDeviceServerDriver& device);
  [[nodiscard]] std::size_t PosesOf(std::uint32_t index) { return runtime_.Poses().Count(index); }

  // The companion tells of a controller; returns when the driver has taken it in.
  void SendRecord(const companion::ControllerRecord& record);
  // The one that was announced last.
  vr::ITrackedDeviceServerDriver& ActivateController(std::uint32_t index = kController);
  // Returns when the driver has taken in all that was sent so far, behind which goes a pose.
  void Fence();

  bench::FakeRuntime runtime_;
  FakeCompanion companion_;
  CServerDriver_Ombrel provider_;

 private:
  int fences_ = 0;
};

}  // namespace ombrel::test
