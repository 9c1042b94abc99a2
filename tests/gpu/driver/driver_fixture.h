#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/wait.h"
#include "companion/tracking_update.h"
#include "gpu_support/colours.h"
#include "gpu_support/companion.h"
#include "gpu_support/recorded_calls.h"
#include "gpu_support/runtime_side.h"
#include "runtime/driver_module.h"
#include "runtime/fake_runtime.h"
#include "runtime/msvc_calls.h"
#include "runtime/small_picture.h"

namespace ombrel::test {

using std::chrono::milliseconds;

inline constexpr milliseconds kPatience{20'000};

// The driver's library with a stand-in of the runtime in this process and a companion in another. The headset has
// the smallest picture.
class DriverTest : public testing::Test {
 protected:
  static constexpr int kEyeWidth = bench::kSmallEyeWidth, kEyeHeight = bench::kSmallEyeHeight;
  static constexpr DXGI_FORMAT kFormat = DXGI_FORMAT_R8G8B8A8_UNORM;

  explicit DriverTest(int hmdMode);
  ~DriverTest() override;

  // The steps of a session, to be taken in any order that a test wants. They throw when a step fails.
  void Init();
  void Activate();
  void Connect();
  void Cleanup();
  void Start();  // the first three
  // Ends the connection and begins another, with new textures.
  void Reconnect();

  // The headset's component of that name; null when it has none.
  [[nodiscard]] void* Component(const char* name) const { return headset_->GetComponent(name); }
  [[nodiscard]] vr::DriverPose_t HeadsetPose() const { return bench::CallGetPose(headset_); }

  // A texture that the runtime shares with the driver under a keyed mutex.
  RuntimeSide::Shared MakeKeyed(int width = 4, int height = 4);
  // How often the driver gave an output to the companion, or tried to.
  [[nodiscard]] std::size_t OutputsReleased() const;

  // The next announcement, waited for at most that long; throws when none comes. The companion has its textures open
  // then.
  companion::FrameSharingInfo TakeAnnouncement(milliseconds timeout = kPatience);
  // True when the headset shows the direction and the position that were sent.
  [[nodiscard]] bool SendPose(float x);
  // True when the driver has taken over the rate.
  [[nodiscard]] bool SendFrameRate(std::uint32_t framesPerSecond);

  bench::FakeRuntime runtime;
  RecordedCalls calls{bench::DeviceGroup::kIntercepted};
  std::unique_ptr<Companion> companion = std::make_unique<Companion>();
  RuntimeSide application;

 private:
  std::unique_ptr<bench::DriverModule> module_;
  vr::ITrackedDeviceServerDriver* headset_ = nullptr;
  std::vector<std::uint64_t> ownHandles_;  // of textures that the runtime shares
};

// An area of an eye's half of the output, away from its rim.
[[nodiscard]] Area EyeMiddle(int eye, const bench::Rgba& rgba, int tolerance = 0);

}  // namespace ombrel::test
