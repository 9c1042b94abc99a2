#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "options.h"
#include "runtime/compositor.h"

namespace bench {

/// The runtime's compositor with its scene, and everything it has of Direct3D, on one thread from making to
/// letting go. The methods may be called from any other thread.
class GraphicsThread {
 public:
  /// Returns when the first frame is about to begin. Throws std::runtime_error if there is no way to make one.
  GraphicsThread(FakeRuntime& runtime, const RuntimeSession& session, const ActiveDevice& headset,
                 const SimulationOptions& options, Compositor::Listener listener);
  GraphicsThread(const GraphicsThread&) = delete;
  GraphicsThread& operator=(const GraphicsThread&) = delete;
  ~GraphicsThread();

  /// Asks for the end after the frame under way; swap sets are destroyed then, unless the driver was abandoned.
  void RequestStop();
  /// Whether the thread has ended, or did so in time. A driver may hold it in a frame until a pose comes.
  [[nodiscard]] bool WaitStopped(std::chrono::milliseconds timeout);
  /// The driver is being cleaned up while a frame may still be held: nothing more is called in it.
  void AbandonDriver() { driverIsGone_ = true; }
  /// Why it ended by itself; empty if it did not.
  [[nodiscard]] std::string Failure() const;
  [[nodiscard]] const std::string& ModeName() const { return modeName_; }
  [[nodiscard]] const DisplayGeometry& Geometry() const { return geometry_; }

 private:
  enum class State { Starting, Running, Ended };

  struct Setup {
    FakeRuntime& runtime;
    const RuntimeSession& session;
    ActiveDevice headset;
    double hertz;
    bool keepDevice;
    Compositor::Listener listener;
  };

  void Work(const Setup& setup);
  void RunDirect(const Setup& setup);
  void RunVirtual(const Setup& setup);
  void RunFrames(Compositor& compositor, const Setup& setup);
  void Enter(State state, const std::string& failure = {});

  std::string modeName_;
  DisplayGeometry geometry_;
  std::atomic<bool> driverIsGone_ = false;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::Starting;
  std::string failure_;
  Compositor* compositor_ = nullptr;  ///< while its frames run
  std::thread thread_;
};

}  // namespace bench
