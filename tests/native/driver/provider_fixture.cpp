#include "provider_fixture.h"

#include <memory>

#include "context/driver_context.h"
#include "render/headset_renderer.h"
#include "support/fake_renderer.h"
#include "support/tell_tale.h"
#include "support/wait.h"

namespace ombrel {

std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer() { return std::make_unique<test::FakeRenderer>(); }

namespace test {

ProviderTest::ProviderTest() {
  host_.isFakeSensorEnabled = true;
  host_.onDeviceAdded = [this](auto, auto* device) {
    const std::lock_guard guard(mutex_);
    added_.push_back(device);
  };
  host_.onLog = [this](const char* message) { log_.Add(message); };
  host_.onPose = [this](std::uint32_t index, const auto&, auto) { poses_.Add(std::to_string(index)); };
}

ProviderTest::~ProviderTest() {
  provider_.Cleanup();
  Context().Clear();
}

void ProviderTest::StartSession() {
  const std::size_t before = Added().size();
  ASSERT_EQ(provider_.Init(&host_), vr::VRInitError_None);
  ASSERT_EQ(Added().size(), before + 2);
  for (std::uint32_t index : {0U, kBaseStation}) Added()[before + index]->Activate(index);
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(companion_.Send(10, ControllerUpdate(kControllerId, 1)));
  ASSERT_TRUE(WaitUntil([&] { return Added().size() == before + 3; }));
  Added().back()->Activate(kController);
  ASSERT_TRUE(companion_.Send(10, ControllerUpdate(kControllerId, 2)));
  ASSERT_TRUE(WaitUntil([&] { return PoseOf(*Added().back()).vecPosition[0] == 2.0; }));
}

ProviderTest::Devices ProviderTest::Added() const {
  const std::lock_guard guard(mutex_);
  return added_;
}

vr::DriverPose_t ProviderTest::PoseOf(vr::ITrackedDeviceServerDriver& device) {
  vr::DriverPose_t pose{};
  device.GetPose(&pose);
  return pose;
}

void ProviderTest::RunFrameWithEventsOfController(const std::vector<std::pair<std::uint32_t, float>>& events) {
  auto next = events.begin();
  host_.nextEvent = [&](vr::VREvent_t* event) {
    if (next == events.end()) return false;
    event->eventType = next->first;
    event->data.hapticVibration.containerHandle = HookedRuntime::ContainerOf(kController);
    event->data.hapticVibration.fDurationSeconds = next->second;
    ++next;
    return true;
  };
  provider_.RunFrame();
  EXPECT_EQ(next, events.end());
  host_.nextEvent = nullptr;
}

}  // namespace test
}  // namespace ombrel
