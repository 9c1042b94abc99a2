#include "driver_under_test.h"

#include <windows.h>

#include <chrono>
#include <stdexcept>

#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/messages.h"
#include "companion/tracking_update.h"
#include "runtime/runtime_session.h"
#include "runtime/small_picture.h"
#include "sharing/import_patch.h"
#include "sharing/sharing_device.h"

namespace bench::speed {

using namespace companion;

namespace {

constexpr std::uint32_t kPatienceMs = 20'000;

// In the place of D3D11CreateDevice, whose arguments do not matter then.
HRESULT WINAPI NoDevice() { return E_FAIL; }

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(std::string(what) + " failed");
}

void Prepare(DriverModule::Module module, Graphics graphics) {
  const auto handle = static_cast<HMODULE>(module);
  const bool done = graphics == Graphics::kSharing
                        ? InterceptModule(handle)
                        : ReplaceImport(handle, "d3d11.dll", "D3D11CreateDevice", reinterpret_cast<void*>(&NoDevice));
  Require(done, "replacing the driver's import of D3D11CreateDevice");
}

}  // namespace

DriverUnderTest::DriverUnderTest(const std::filesystem::path& library, Graphics graphics, int hmdMode)
    : module_(std::make_unique<DriverModule>(library,
                                             [graphics](DriverModule::Module module) { Prepare(module, graphics); })) {
  runtime.KeepNothing();
  runtime.Settings().SetDefaults(SmallPictureSettings(hmdMode));
  runtime.Poses().Listen([this](const PoseRecord& record) {
    if (onPose) onPose(record.device);
    if (record.device == vr::k_unTrackedDeviceIndex_Hmd) headX_ = record.pose.vecPosition[0];
  });
  Require(companion.Open(), "making the pipes");
  Require(module_->Provider().Init(&runtime) == vr::VRInitError_None, "Init");
  Require(Headset().Activate(0) == vr::VRInitError_None, "Activate");
  Require(companion.WaitForConnection(kPatienceMs), "waiting for the driver");
}

DriverUnderTest::~DriverUnderTest() { module_->Provider().Cleanup(); }

void* DriverUnderTest::Component(const char* name) { return ComponentOf(Headset(), name); }

void DriverUnderTest::Send(std::span<const std::uint8_t> message) { Require(companion.Send(message), "sending"); }

void DriverUnderTest::Fence() {
  const auto x = static_cast<float>(++fences_);
  Send(EncodeQuaternionAndPosition({}, {x, 0.0F, 0.0F}));
  Require(WaitUntil([&] { return headX_ == x; }, std::chrono::milliseconds(kPatienceMs)), "waiting for a pose");
}

void DriverUnderTest::AddController(std::uint32_t id) {
  Send(EncodeControllerUpdate({.controllerId = id}));
  Fence();
  const AddedDevice controller = runtime.Host().Added().back();
  Require(controller.driver->Activate(controller.index) == vr::VRInitError_None, "Activate");
}

vr::VRInputComponentHandle_t DriverUnderTest::LastScalar() {
  return FakeDriverInput::HandleOf(FakeProperties::ContainerOf(1), "/input/trigger/value");
}

void DriverUnderTest::SendFrameRate(std::uint32_t framesPerSecond) {
  Send(EncodeFramerateUpdate(framesPerSecond));
  Fence();
}

}  // namespace bench::speed
