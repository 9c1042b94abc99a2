// The library as it is built, through a session of its own: what the native tests prove of the driver's parts, end to
// end.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <cstring>
#include <mutex>
#include <vector>

#include "companion/controller_record.h"
#include "support/link_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

// In the place of the driver's WriteFile.
std::mutex writesMutex;
std::vector<DWORD> writes;  // their sizes

BOOL WINAPI NotedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
  {
    const std::lock_guard guard(writesMutex);
    writes.push_back(size);
  }
  return WriteFile(file, bytes, size, written, overlapped);
}

class SessionTest : public LinkTest {
 protected:
  static constexpr std::uint32_t kController = 2;

  vr::ITrackedDeviceServerDriver& AddController() {
    Send(companion::EncodeControllerUpdate({.controllerId = 7}));
    Fence();
    vr::ITrackedDeviceServerDriver& controller = *runtime.Host().Added().back().driver;
    EXPECT_EQ(controller.Activate(kController), vr::VRInitError_None);
    return controller;
  }
};

TEST_F(SessionTest, LogsItsStartByteForByte) {
  Set("windowWidth", 2560);
  Set("windowHeight", 1440);
  Set("renderScale", 150);
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Headset().Activate(0);
  FakeSensor().Activate(1);
  EXPECT_THAT(LogLines(), ElementsAre("Ombrel process is running\n",                               //
                                      "Preparing HMD, mode 0\n",                                   //
                                      "Using settings values\n",                                   //
                                      "driver_ombrel: Serial Number: 0.8\n",                       //
                                      "driver_ombrel: Model Number: Ombrel\n",                     //
                                      "driver_ombrel: Window: -1 -1 3840 2160\n",                  //
                                      "driver_ombrel: Render Target: 1920 2160\n",                 //
                                      "driver_ombrel: Seconds from Vsync to Photons: 0.005000\n",  //
                                      "driver_ombrel: Display Frequency: 60.000000\n",             //
                                      "driver_ombrel: IPD: 0.065000\n",                            //
                                      "Creating Direct driver component \n",                       //
                                      "Fake sensor registered with result 1\n",                    //
                                      "HMD activated with id 0 \n",                                //
                                      "Activate fake sensor 1 \n"));
}

TEST_F(SessionTest, AFrameAsksForEventsOf48BytesAndReportsItsDevices) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Headset().Activate(0);
  FakeSensor().Activate(1);
  runtime.Journal().Clear();
  runtime.Host().PushEvent({});
  Provider().RunFrame();
  EXPECT_EQ(runtime.Host().PollsWithWrongSize(), 0U);
  EXPECT_THAT(runtime.Journal().Calls("IVR"),
              ElementsAre("IVRServerDriverHost.PollNextEvent", "IVRDriverInput.UpdateBooleanComponent",
                          "IVRServerDriverHost.TrackedDevicePoseUpdated"));
}

TEST_F(SessionTest, PassesAPoseOnFromTheLinksThread) {
  Set("RotationOffsetYDeg", 90);
  Connect();
  const auto sent = SendForPose(companion::EncodeQuaternionAndPosition({}, {0.5F, 1.25F, -2.0F}));
  EXPECT_THAT(sent.vecPosition, ElementsAre(0.5, 1.25, -2.0));
  EXPECT_NEAR(sent.qRotation.y, 0.70710678, 1e-6) << "turned by the user's offset";
  EXPECT_EQ(runtime.Poses().Latest(0)->structSize, 280U);
  EXPECT_NE(runtime.Poses().Latest(0)->threadId, GetCurrentThreadId());
  const auto asked = PoseOf(Headset());
  EXPECT_EQ(std::memcmp(&asked, &sent, sizeof(asked)), 0);
}

TEST_F(SessionTest, PassesAFrameRateOn) {
  Connect();
  Send(companion::EncodeFramerateUpdate(72));
  EXPECT_TRUE(WaitFor([&] { return runtime.Log().Contains("Updating headset fps, new value: 72.000000 \n"); }));
  EXPECT_EQ(runtime.Properties().Get<float>(bench::FakeProperties::ContainerOf(0), vr::Prop_DisplayFrequency_Float),
            72.0F);
}

TEST_F(SessionTest, MovesAndPressesAController) {
  Connect();
  vr::ITrackedDeviceServerDriver& controller = AddController();
  EXPECT_EQ(runtime.Host().Added().back().serial, "OmbrelControllerV02ID7");
  companion::ControllerRecord record{.controllerId = 7, .pressedButtons = 0x4};
  record.pose[3] = 1.5F;
  record.axes[1] = {0.25F, 0};
  Send(companion::EncodeControllerUpdate(record));
  Fence();
  const auto container = bench::FakeProperties::ContainerOf(kController);
  EXPECT_EQ(runtime.Poses().Latest(kController)->pose.vecPosition[0], 1.5);
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 1.5);
  EXPECT_EQ(runtime.Input().BoolValue(container, "/input/grip/click"), true);
  EXPECT_EQ(runtime.Input().ScalarValue(container, "/input/trigger/value"), 0.25F);
}

TEST_F(SessionTest, WritesAVibrationInThreeParts) {
  Connect();
  AddController();
  const ModuleImport noted(module.Handle(), "WriteFile", reinterpret_cast<void*>(&NotedWriteFile));
  writes.clear();
  runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(kController), 1, 0.1F, 100.0F, 0.5F);
  Provider().RunFrame();
  const auto received = server.Next(kTimeoutMs);
  ASSERT_TRUE(received && received->message.Is(companion::MessageType::HapticPulse));
  const auto pulse = companion::DecodeHapticPulse(received->message.payload);
  EXPECT_EQ(pulse->controllerId, 7U);
  EXPECT_EQ(pulse->durationMicroseconds, 100'000 - 65'536);
  const std::lock_guard guard(writesMutex);
  EXPECT_THAT(writes, ElementsAre(4, 4, 12)) << "length, type and payload";
}

TEST_F(SessionTest, AnotherOneMayFollowAndItsFormerDevicesStay) {
  Connect();
  vr::ITrackedDeviceServerDriver& former = AddController();
  Provider().Cleanup();
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(PoseOf(former).qRotation.w, 1.0);
  EXPECT_EQ(runtime.Host().Added().back().serial, "serialNumber") << "a new headset";
}

}  // namespace
}  // namespace ombrel::test
