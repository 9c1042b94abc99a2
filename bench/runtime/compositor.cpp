#include "runtime/compositor.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "base/clock.h"

namespace bench {
namespace {

constexpr float kNearMeters = 0.1F;
constexpr float kFarMeters = 50.0F;
constexpr double kFallbackHertz = 60.0;

vr::IVRDisplayComponent& DisplayOf(const ActiveDevice& headset) {
  void* display = headset.added.driver->GetComponent(vr::IVRDisplayComponent_Version);
  if (display == nullptr) {
    throw std::runtime_error("the headset has no display component");
  }
  return *static_cast<vr::IVRDisplayComponent*>(display);
}

}  // namespace

Compositor::Compositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter)
    : runtime_(runtime),
      headset_(headset),
      painter_(painter),
      geometry_(ReadDisplayGeometry(DisplayOf(headset))),
      ipdMeters_(runtime.Properties().Get<float>(headset.container, vr::Prop_UserIpdMeters_Float).value_or(0.0F)) {}

void Compositor::Join() {
  if (thread_.joinable()) {
    RequestStop();
    thread_.join();
  }
}

std::int64_t Compositor::PeriodTicks(double hertz) const {
  if (hertz <= 0.0) {
    hertz = runtime_.Properties().Get<float>(headset_.container, vr::Prop_DisplayFrequency_Float).value_or(0.0F);
  }
  return SecondsToTicks(1.0 / (hertz > 0.0 ? hertz : kFallbackHertz));
}

EyeView Compositor::ViewOf(vr::EVREye eye, const runtime::PoseMatrix& head) const {
  EyeView view;
  view.eye = eye;
  view.worldFromEye = runtime::Multiply(head, HeadFromEye(eye, ipdMeters_));
  view.projection = ProjectionMatrix(geometry_.eyes[static_cast<std::size_t>(eye)].projection, kNearMeters, kFarMeters);
  return view;
}

FrameReport Compositor::RunFrame() {
  FrameReport report;
  report.index = nextIndex_++;
  const auto pose = runtime_.Poses().Latest(headset_.added.index);
  report.poseTicks = pose ? pose->ticks : 0;
  report.pose = pose ? runtime::WorldFromHead(pose->pose) : runtime::IdentityPose();
  report.renderTicks = NowTicks();
  HandOver(report);
  if (lastPresentTicks_ != 0) {
    report.missedIntervals = MissedIntervals(report.presentTicks - lastPresentTicks_, PeriodTicks(hertz_));
  }
  lastPresentTicks_ = report.presentTicks;
  if (!StopRequested()) {  // a stopping runtime may already be cleaning the driver up
    AfterPresent(report);
  }
  if (listener_) {
    listener_(report);
  }
  return report;
}

void Compositor::Run(double hertz) {
  hertz_ = hertz;
  std::int64_t dueTicks = NowTicks();
  while (!StopRequested()) {
    SleepUntilTicks(dueTicks);
    // Paced from the frame's own start: the driver paces as well, and two fixed-rate timers in series would
    // beat against each other.
    dueTicks = NowTicks() + PeriodTicks(hertz);
    RunFrame();
  }
}

void Compositor::Start(double hertz) {
  running_ = true;
  thread_ = std::thread([this, hertz] {
    std::string failure;
    try {
      Run(hertz);
    } catch (const std::exception& error) {
      failure = error.what();
    }
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    running_ = false;
    stopped_.notify_all();
  });
}

void Compositor::RequestStop() { stopRequested_ = true; }

bool Compositor::WaitStopped(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return stopped_.wait_for(lock, timeout, [this] { return !running_; });
}

std::string Compositor::Failure() const {
  const std::lock_guard lock(mutex_);
  return failure_;
}

}  // namespace bench
