#pragma once

#include <gtest/gtest.h>
#include <openvr_driver.h>

#include <string>
#include <vector>

#include "runtime/driver_module.h"
#include "runtime/fake_runtime.h"

namespace ombrel::test {

// Keeps a process "Ombrel.exe", which the driver's Init looks for, running until the test program ends.
void EnsureCompanionProcess();

// The device's pose, as the runtime asks for it.
[[nodiscard]] vr::DriverPose_t PoseOf(vr::ITrackedDeviceServerDriver& device);

// Whether the driver's Direct3D devices can be made. They take a second or more, and most tests look at none. Without
// them Cleanup does not give the runtime's threads, of which there are none here, their four tenths of a second either.
enum class Graphics { kNone, kReal };

// A freshly loaded driver and a runtime for it; both are gone, in the right order, after each test. The test's thread
// plays the runtime's server thread.
class DriverTest : public ::testing::Test {
 protected:
  explicit DriverTest(Graphics graphics = Graphics::kNone);
  ~DriverTest() override;

  // Init while a process named "Ombrel.exe" runs.
  int Init();
  // Init with whatever processes there are.
  int InitAsItIs() { return module.Provider().Init(&runtime); }
  // Init without a base station, then Activate with index 0.
  void InitAndActivateHeadset();
  // Cleanup and FreeLibrary, before the test's end; nothing of the driver may be used afterwards.
  void Unload();

  // The provider; throws std::runtime_error after Unload.
  [[nodiscard]] vr::IServerTrackedDeviceProvider& Provider() { return module.Provider(); }
  // The devices that Init announced; throw std::out_of_range when there is none.
  [[nodiscard]] vr::ITrackedDeviceServerDriver& Headset() { return *runtime.Host().Added().at(0).driver; }
  [[nodiscard]] vr::ITrackedDeviceServerDriver& FakeSensor() { return *runtime.Host().Added().at(1).driver; }
  [[nodiscard]] vr::IVRDisplayComponent& Display();

  // A key of the driver's section of the settings.
  template <typename Value>
  void Set(const char* key, Value value) {
    runtime.Settings().Set("driver_ombrel", key, value);
  }
  [[nodiscard]] std::vector<std::string> LogLines() { return runtime.Log().Lines(); }
  // The lines since the last call of this.
  std::vector<std::string> NewLogLines() { return runtime.Log().TakeNew(); }

  bench::FakeRuntime runtime;
  bench::DriverModule module;
};

}  // namespace ombrel::test
