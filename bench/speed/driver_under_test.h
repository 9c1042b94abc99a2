#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "companion/pipe_server.h"
#include "lean_runtime.h"
#include "runtime/driver_module.h"

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

  [[nodiscard]] vr::ITrackedDeviceServerDriver& Headset() { return *runtime.host.Devices().at(0); }
  // The headset's component of that name; throws when it has none.
  [[nodiscard]] void* Component(const char* name);
  void Send(std::span<const std::uint8_t> message);
  // Sends the frame rate and returns when the driver has taken it over.
  void SendFrameRate(std::uint32_t framesPerSecond);

  LeanRuntime runtime;
  PipeServer companion{{}};

 private:
  std::unique_ptr<DriverModule> module_;
};

}  // namespace bench::speed
