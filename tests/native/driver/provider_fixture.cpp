#include "provider_fixture.h"

#include <memory>
#include <span>

#include "context/driver_context.h"
#include "render/headset_renderer.h"
#include "support/fake_renderer.h"

namespace ombrel {

std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer() { return std::make_unique<test::FakeRenderer>(); }

namespace test {

ProviderTest::~ProviderTest() {
  provider_.Cleanup();
  Context().Clear();
  TheProcesses() = {};
}

void ProviderTest::Start() {
  const std::size_t before = Added().size();
  ASSERT_EQ(Init(), vr::VRInitError_None);
  ASSERT_EQ(Added().size(), before + 2);
  for (const std::uint32_t index : {0U, kBaseStation}) {
    ASSERT_EQ(Device(before + index).Activate(index), vr::VRInitError_None);
  }
}

void ProviderTest::Connect() {
  Start();
  ASSERT_TRUE(companion_.Connect());
}

vr::DriverPose_t ProviderTest::PoseOf(vr::ITrackedDeviceServerDriver& device) {
  vr::DriverPose_t pose{};
  device.GetPose(&pose);
  return pose;
}

void ProviderTest::SendRecord(const companion::ControllerRecord& record) {
  const companion::Bytes message = companion::EncodeControllerUpdate(record);
  ASSERT_TRUE(companion_.out.Send(std::as_bytes(std::span(message))));
  Fence();
}

vr::ITrackedDeviceServerDriver& ProviderTest::ActivateController(std::uint32_t index) {
  vr::ITrackedDeviceServerDriver& controller = *Added().back().driver;
  EXPECT_EQ(controller.Activate(index), vr::VRInitError_None);
  return controller;
}

void ProviderTest::Fence() {
  const double x = ++fences_;
  ASSERT_TRUE(companion_.Send(4, Bytes().F32({0, 0, 0, 1, static_cast<float>(x), 0, 0}).U32(4)));
  EXPECT_TRUE(runtime_.Journal().WaitUntil(
      [&] {
        const auto pose = runtime_.Poses().Latest(0);
        return pose && pose->pose.vecPosition[0] == x;
      },
      kPatience));
}

}  // namespace test
}  // namespace ombrel
