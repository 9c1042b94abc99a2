#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

#include "companion/pipe_server.h"
#include "runtime/driver_module.h"
#include "runtime/fake_runtime.h"

namespace bench::speed {

// Which Direct3D the driver gets: none where only messages count.
enum class Graphics { kNone, kSharing };

// The driver in a session: loaded, activated and connected to a companion in this process, whose program is named as
// the driver expects the companion's to be. The caller plays the server thread. Throws std::runtime_error when a step
// fails.
class DriverUnderTest {
 public:
  DriverUnderTest(const std::filesystem::path& library, Graphics graphics, int hmdMode = 0);
  ~DriverUnderTest();
  DriverUnderTest(const DriverUnderTest&) = delete;
  DriverUnderTest& operator=(const DriverUnderTest&) = delete;

  [[nodiscard]] vr::ITrackedDeviceServerDriver& Headset() { return *runtime.Host().Added().at(0).driver; }
  // The headset's component of that name; throws when it has none.
  [[nodiscard]] void* Component(const char* name);
  void Send(std::span<const std::uint8_t> message);
  // Returns when the driver's reader thread is through with all that was sent: what it calls may be replaced then.
  void Fence();
  // Announces the controller of that id and activates it.
  void AddController(std::uint32_t id);
  // Of the first controller, the scalar component that a record updates last: its trigger.
  [[nodiscard]] vr::VRInputComponentHandle_t LastScalar();
  // Sends the frame rate and returns when the driver has taken it over.
  void SendFrameRate(std::uint32_t framesPerSecond);

  // Keeps nothing: recording a call costs more than making it.
  FakeRuntime runtime;
  // Called first thing in each TrackedDevicePoseUpdated, with the device. To be set behind a Fence.
  std::function<void(std::uint32_t device)> onPose;
  companion::PipeServer companion;

 private:
  int fences_ = 0;
  std::atomic<double> headX_ = 0;  // in metres; `onPose` has returned by then
  std::unique_ptr<DriverModule> module_;
};

}  // namespace bench::speed
