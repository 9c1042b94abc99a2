#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <vector>

#include <openvr_driver.h>

#include "runtime/fake_runtime.h"
#include "runtime/server_thread.h"

namespace bench {

// A device that the runtime has activated.
struct ActiveDevice {
  AddedDevice added;
  vr::PropertyContainerHandle_t container = 0;
  vr::EVRInitError activation = vr::VRInitError_None;
};

// One life of a driver: Init, its devices activated, RunFrame at a rate, Cleanup, all on one server
// thread, as the runtime does it. A device is activated after its TrackedDeviceAdded returned true, never
// inside it: at the end of Init, and before each RunFrame. The methods may be called from any thread but
// the server thread; what the driver throws reaches the caller, but for RunFrame, where it ends the program.
// Every call into the driver but RunFrame is in the journal ("driver.Activate").
class RuntimeSession {
 public:
  // The provider's module must stay loaded until the session is gone.
  RuntimeSession(FakeRuntime& runtime, vr::IServerTrackedDeviceProvider& provider);
  RuntimeSession(const RuntimeSession&) = delete;
  RuntimeSession& operator=(const RuntimeSession&) = delete;
  // Cleans up if that has not been done.
  ~RuntimeSession();

  vr::EVRInitError Init();
  void StartFrames(double hertz = 90.0);
  void StopFrames();
  void ActivatePending();
  // Deactivates every device, newest first, as the runtime does before it ends.
  void Deactivate();
  void Cleanup();

  [[nodiscard]] std::vector<ActiveDevice> Devices() const;
  [[nodiscard]] std::optional<ActiveDevice> Find(vr::ETrackedDeviceClass deviceClass) const;
  [[nodiscard]] std::optional<ActiveDevice> Headset() const { return Find(vr::TrackedDeviceClass_HMD); }

  [[nodiscard]] std::size_t Frames() const { return frames_; }
  [[nodiscard]] double LongestFrameMs() const { return longestFrameMs_; }

 private:
  void ActivatePendingHere();
  void RunFrameHere();

  FakeRuntime& runtime_;
  vr::IServerTrackedDeviceProvider& provider_;
  mutable std::mutex mutex_;
  std::vector<ActiveDevice> devices_;
  std::atomic<std::size_t> frames_ = 0;
  std::atomic<double> longestFrameMs_ = 0.0;
  bool initialised_ = false;
  ServerThread thread_;
};

// A device's component of that version; throws std::runtime_error if it has none.
[[nodiscard]] void* ComponentOf(vr::ITrackedDeviceServerDriver& device, const char* version);

}  // namespace bench
