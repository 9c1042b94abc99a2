#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "runtime/display_geometry.h"
#include "runtime/fake_runtime.h"
#include "runtime/frame_painter.h"
#include "runtime/frame_report.h"
#include "runtime/runtime_session.h"

namespace bench {

// The runtime's compositor: takes the headset's newest pose, lets the painter paint both eyes and hands
// the frame to the driver, at the display rate that the driver reports. Derived classes hand over in one of
// the two ways that drivers offer. RunFrame and the loop are never used at once.
class Compositor {
 public:
  using Listener = std::function<void(const FrameReport&)>;

  // `runtime` and `painter` must outlive the compositor, and the driver its loop.
  Compositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter);
  Compositor(const Compositor&) = delete;
  Compositor& operator=(const Compositor&) = delete;
  virtual ~Compositor() = default;

  // One frame, without a wait for its time. Throws std::runtime_error if Direct3D fails.
  FrameReport RunFrame();
  // Frames at the display rate (or `hertz`, if that is above 0), on the caller's thread until RequestStop.
  // Throws what a frame throws.
  void Run(double hertz = 0.0);
  // The same on a thread of its own.
  void Start(double hertz = 0.0);
  // Asks the loop to end after its frame.
  void RequestStop();
  // Whether the loop has ended, or did so in time. A driver may hold it in a frame until a pose comes.
  [[nodiscard]] bool WaitStopped(std::chrono::milliseconds timeout);
  // Why the loop ended by itself; empty if it did not.
  [[nodiscard]] std::string Failure() const;
  // Called after each frame on the compositor's thread. Set before Start.
  void Listen(Listener listener) { listener_ = std::move(listener); }
  [[nodiscard]] const DisplayGeometry& Geometry() const { return geometry_; }

 protected:
  // Ends the loop and waits for it. The destructors of derived classes call it first.
  void Join();
  // Paints and presents; fills the two Present times of the report.
  virtual void HandOver(FrameReport& report) = 0;
  // Called after a frame was handed over: whatever the driver's way has for waiting and timing.
  virtual void AfterPresent(const FrameReport& report) = 0;
  [[nodiscard]] bool StopRequested() const { return stopRequested_; }
  // An eye's camera for a head pose; target and viewport are left to the derived class.
  [[nodiscard]] EyeView ViewOf(vr::EVREye eye, const runtime::PoseMatrix& head) const;
  [[nodiscard]] FramePainter& Painter() { return painter_; }

 private:
  [[nodiscard]] std::int64_t PeriodTicks(double hertz) const;

  FakeRuntime& runtime_;
  ActiveDevice headset_;
  FramePainter& painter_;
  DisplayGeometry geometry_;
  float ipdMeters_ = 0.0F;
  double hertz_ = 0.0;
  std::uint64_t nextIndex_ = 0;
  std::int64_t lastPresentTicks_ = 0;
  Listener listener_;
  std::thread thread_;
  std::atomic<bool> stopRequested_ = false;
  mutable std::mutex mutex_;
  std::condition_variable stopped_;
  bool running_ = false;
  std::string failure_;
};

}  // namespace bench
