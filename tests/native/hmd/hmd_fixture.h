#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "context/driver_context.h"
#include "context/driver_log.h"
#include "hmd/hmd_driver_direct.h"
#include "hmd/hmd_driver_virtual.h"
#include "runtime/fake_runtime.h"
#include "support/background.h"
#include "support/fake_companion.h"
#include "support/fake_renderer.h"
#include "support/runtime_lines.h"

namespace ombrel::test {

// A runtime, a companion that offers nothing yet, and a headset, once it is made.
class HeadsetTest : public testing::Test {
 protected:
  using Lines = Journal::Lines;

  HeadsetTest() {
    EXPECT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
    SetLogSinkIfNone(&runtime_.Log());
  }
  ~HeadsetTest() override {
    if (headset_) headset_->Core().StopLink();
    headset_.reset();
    ClearLogSink();
    Context().Clear();
  }

  void Set(const std::string& key, std::int32_t value) { runtime_.Settings().Set("driver_ombrel", key, value); }
  template <typename Headset = HMDDriverDirect>
  void Make() {
    auto renderer = std::make_unique<FakeRenderer>();
    renderer_ = renderer.get();
    renderer_->onCall = onRendererCall_;
    headset_ = std::make_unique<Headset>(std::move(renderer));
  }
  // As the provider does when it has added its own listener.
  void StartLink() { headset_->Core().StartLink(); }
  [[nodiscard]] vr::DriverPose_t Pose() const {
    vr::DriverPose_t pose{};
    EXPECT_EQ(headset_->GetPose(&pose), &pose);
    return pose;
  }
  [[nodiscard]] Lines LogLines() { return runtime_.Log().Lines(); }
  // Of those that the runtime was sent.
  [[nodiscard]] vr::DriverPose_t LastPose() { return runtime_.Poses().All().back().pose; }
  // Waits until `condition` holds; it is looked at after each call of the driver into the runtime.
  template <typename Condition>
  [[nodiscard]] bool WaitFor(Condition condition) {
    return runtime_.Journal().WaitUntil(condition, kPatience);
  }
  [[nodiscard]] bool WaitForPoses(std::size_t count) {
    return WaitFor([&] { return runtime_.Poses().Count() >= count; });
  }
  [[nodiscard]] bool WaitForLogLine(const std::string& line) {
    return WaitFor([&] { return runtime_.Log().Contains(line); });
  }

  bench::FakeRuntime runtime_;
  FakeCompanion companion_;
  FakeRenderer* renderer_ = nullptr;
  std::function<void(const std::string&)> onRendererCall_;  // of the headset that is made next
  std::unique_ptr<HMDDriver> headset_;
};

}  // namespace ombrel::test
