#include "runtime/runtime_session.h"

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/wait.h"
#include "runtime/thread_id.h"
#include "toy_session.h"

namespace bench {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class TestDevice final : public ombrel::test::IdleDevice {
 public:
  explicit TestDevice(FakeRuntime& owner) : runtime(owner) {}
  vr::EVRInitError Activate(uint32_t index) override {
    activatedAs = index;
    threadId = bench::runtime::ThreadId();
    insideAdded = runtime.Journal().Calls().back() == "IVRServerDriverHost.TrackedDeviceAdded";
    return vr::VRInitError_None;
  }
  void Deactivate() override { ++deactivations; }

  FakeRuntime& runtime;
  uint32_t activatedAs = vr::k_unTrackedDeviceIndexInvalid;
  std::uint32_t threadId = 0;
  int deactivations = 0;
  bool insideAdded = false;
};

class TestProvider final : public ombrel::test::IdleProvider {
 public:
  explicit TestProvider(FakeRuntime& runtime) : headset(runtime), runtime_(runtime) {}
  vr::EVRInitError Init(vr::IVRDriverContext* context) override {
    initContext = context;
    runtime_.Host().TrackedDeviceAdded("head", vr::TrackedDeviceClass_HMD, &headset);
    return initResult;
  }
  void Cleanup() override { ++cleanups; }
  void RunFrame() override { ++frames; }

  TestDevice headset;
  vr::IVRDriverContext* initContext = nullptr;
  vr::EVRInitError initResult = vr::VRInitError_None;
  std::atomic<int> frames = 0;
  int cleanups = 0;

 private:
  FakeRuntime& runtime_;
};

class RuntimeSessionTest : public testing::Test {
 protected:
  FakeRuntime runtime;
  TestProvider provider{runtime};
  RuntimeSession session{runtime, provider};
};

TEST_F(RuntimeSessionTest, ActivatesOnTheServerThreadAfterInit) {
  EXPECT_EQ(session.Init(), vr::VRInitError_None);
  EXPECT_EQ(provider.initContext, &runtime);
  EXPECT_EQ(provider.headset.activatedAs, 0U);
  EXPECT_NE(provider.headset.threadId, bench::runtime::ThreadId());
  EXPECT_FALSE(provider.headset.insideAdded);
  ASSERT_TRUE(session.Headset().has_value());
  EXPECT_EQ(session.Headset()->container, FakeProperties::ContainerOf(0));
  EXPECT_THAT(runtime.Journal().Calls("driver."),
              ElementsAre("driver.Init", "driver.Init returned", "driver.Activate", "driver.Activate returned"));
}

TEST_F(RuntimeSessionTest, ActivatesNothingAfterAFailedInit) {
  provider.initResult = vr::VRInitError_Init_HmdNotFound;
  EXPECT_EQ(session.Init(), vr::VRInitError_Init_HmdNotFound);
  EXPECT_EQ(provider.headset.activatedAs, vr::k_unTrackedDeviceIndexInvalid);
}

TEST_F(RuntimeSessionTest, ADeviceAddedLaterByAnotherThreadIsActivatedOnTheServerThread) {
  session.Init();
  TestDevice controller(runtime);
  session.StartFrames(500.0);
  std::thread([&] {
    runtime.Host().TrackedDeviceAdded("hand", vr::TrackedDeviceClass_Controller, &controller);
  }).join();
  EXPECT_TRUE(WaitUntil([&] { return session.Devices().size() == 2; }, 10s));
  EXPECT_EQ(controller.activatedAs, 1U);
  EXPECT_EQ(controller.threadId, provider.headset.threadId);
}

TEST_F(RuntimeSessionTest, ARefusedDeviceStaysInactive) {
  runtime.Host().RefuseDevice("head");
  session.Init();
  EXPECT_FALSE(session.Headset().has_value());
  EXPECT_EQ(provider.headset.activatedAs, vr::k_unTrackedDeviceIndexInvalid);
}

TEST_F(RuntimeSessionTest, CleansUpOnceAndRunsNoFrameAfterwards) {
  session.Init();
  session.StartFrames(500.0);
  session.Cleanup();
  const int frames = provider.frames;
  session.Cleanup();
  EXPECT_EQ(provider.cleanups, 1);
  EXPECT_EQ(provider.frames, frames);
  EXPECT_TRUE(session.Devices().empty());
}

TEST_F(RuntimeSessionTest, DeactivatesBeforeTheEnd) {
  session.Init();
  session.Deactivate();
  EXPECT_EQ(provider.headset.deactivations, 1);
  EXPECT_FALSE(session.Headset().has_value());
}

}  // namespace
}  // namespace bench
