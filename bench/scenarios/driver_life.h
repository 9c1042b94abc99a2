#pragma once

#include <openvr_driver.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "runtime/driver_module.h"
#include "runtime/fake_runtime.h"
#include "scenario.h"

namespace bench::scenarios {

enum class Mode { kLayers = 0, kTexture = 1 };  // values of the setting hmdMode

// The driver's library, loaded into a stand-in of the runtime, with a small picture. Every call into it is timed. The
// calls go out on the caller's thread: a scenario's own thread plays the server thread. At the end Cleanup and
// FreeLibrary, unless that was done.
class DriverLife {
 public:
  using SwapSet = std::array<vr::SharedTextureHandle_t, 3>;
  // Called with the HMODULE before any code of the driver runs but its static initialisation.
  using AfterLoad = std::function<void(void* module)>;

  explicit DriverLife(ScenarioRun& run, Mode mode = Mode::kLayers, const AfterLoad& afterLoad = {});
  ~DriverLife();
  DriverLife(const DriverLife&) = delete;
  DriverLife& operator=(const DriverLife&) = delete;

  // A life that scenarios go on with one after the other, so that the short form takes less time: started if there is
  // none. It must end before another life begins.
  [[nodiscard]] static DriverLife& Shared(ScenarioRun& run);
  static void EndShared();

  vr::EVRInitError Init();
  // Activates what the driver has announced since the last time: the headset and then each controller.
  void ActivatePending();
  // The two in one; throws std::runtime_error when Init declines.
  void Start();
  void RunFrame();
  void Cleanup();
  void Unload();
  // What no runtime should do. Unload must still follow, after Cleanup unless the library has gone.
  void UnloadWithoutCleanup();

  [[nodiscard]] bool HasLayers() const { return mode_ == Mode::kLayers; }
  [[nodiscard]] vr::ITrackedDeviceServerDriver& Headset() const { return *headset_; }
  [[nodiscard]] void* Component(const char* name);
  [[nodiscard]] vr::DriverPose_t Pose();
  // The controller of that id, once the driver has announced it.
  [[nodiscard]] std::optional<AddedDevice> Controller(std::uint32_t controllerId);

  [[nodiscard]] SwapSet CreateSwapSet(std::uint32_t processId = 1);
  // One set for all who only need something to show, until Cleanup.
  [[nodiscard]] const SwapSet& OneSwapSet();
  // Destroys that set and makes another.
  void RenewSwapSet();
  // Sets that were ever made in this process: each leaks one small block (docs/compatibility.md, C41).
  [[nodiscard]] static std::int64_t SetsMade();
  void DestroySwapSet(vr::SharedTextureHandle_t handle);
  // A layer whose pose has `number` in its translation.
  void SubmitLayer(vr::SharedTextureHandle_t eye, float number);
  // The frame, in the way of the mode: with a sync texture (or none: 0), or as the finished texture of that handle.
  void Present(vr::SharedTextureHandle_t texture = 0);
  // The wait for the next frame, in the way of the mode.
  void WaitForNext();

  bench::FakeRuntime runtime;

 private:
  CallWatch& calls_;
  const Mode mode_;
  DriverModule module_;
  vr::IServerTrackedDeviceProvider* provider_;
  vr::ITrackedDeviceServerDriver* headset_ = nullptr;
  vr::IVRDriverDirectModeComponent* direct_ = nullptr;
  vr::IVRVirtualDisplay* display_ = nullptr;
  std::optional<SwapSet> oneSet_;
};

}  // namespace bench::scenarios
