#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "csv_log.h"
#include "device_keeper.h"
#include "frame_statistics.h"
#include "graphics_thread.h"
#include "haptic_script.h"
#include "options.h"
#include "runtime/driver_folder.h"
#include "runtime/driver_module.h"
#include "runtime/fake_runtime.h"
#include "runtime/runtime_session.h"

namespace bench {

/// One session of the stand-in runtime with one driver, from loading to unloading. Used by one thread, but
/// for Stop, which any may call.
class Simulation {
 public:
  /// Loads the driver. Throws std::runtime_error if it, its settings or an output file is not usable.
  explicit Simulation(const SimulationOptions& options);
  ~Simulation();

  /// Runs the session to its end; 0 if all went well, else the program's exit code. Throws
  /// std::runtime_error if the compositor cannot work.
  int Run();
  /// Asks Run to end early.
  void Stop() { stopRequested_ = true; }

 private:
  static constexpr vr::TrackedDeviceIndex_t kHead = vr::k_unTrackedDeviceIndex_Hmd;

  void LoadSettings();
  void WaitForFirstPose();
  void StartGraphics();
  void Watch();
  [[nodiscard]] bool Finished(double seconds) const;
  void PrintLive(double seconds);
  void Shutdown();
  [[nodiscard]] int Conclude();
  void WriteSummary();
  void WriteDriverLog();

  SimulationOptions options_;
  DriverFolder driver_;
  FakeRuntime runtime_;
  PoseCsv poseCsv_;
  FrameCsv frameCsv_;
  HapticScript haptics_;
  FrameStatistics statistics_;
  DeviceKeeper deviceKeeper_;
  DriverModule module_;
  RuntimeSession session_;
  std::unique_ptr<GraphicsThread> graphics_;
  std::string modeName_;
  std::size_t headPosesSeen_ = 0;
  std::size_t headPosesAtStart_ = 0;
  double secondsRun_ = 0.0;
  double cleanupMs_ = 0.0;
  nlohmann::ordered_json devices_ = nlohmann::ordered_json::array();
  double displayFrequency_ = 0.0;
  std::atomic<bool> stopRequested_ = false;
};

}  // namespace bench
