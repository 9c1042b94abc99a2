#include "driver_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

constexpr vr::TrackedDeviceIndex_t kHeadsetIndex = 0;

std::string DriverPath() {
  const char* const path = std::getenv("OMBREL_DRIVER");
  if (path == nullptr) throw std::runtime_error("OMBREL_DRIVER does not name the driver's library");
  return path;
}

void Intercept(void* module) {
  if (!bench::InterceptModule(static_cast<HMODULE>(module))) throw std::runtime_error("no import of D3D11CreateDevice");
}

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(std::string(what) + " failed");
}

}  // namespace

DriverTest::DriverTest(int hmdMode) : module_(std::make_unique<bench::DriverModule>(DriverPath(), Intercept)) {
  runtime.Settings().SetDefaults(bench::SmallPictureSettings(hmdMode));
}

DriverTest::~DriverTest() { Cleanup(); }

void DriverTest::Init() {
  Require(module_->Provider().Init(&runtime) == vr::VRInitError_None, "Init");
  headset_ = runtime.Host().TakePending().at(0).driver;
}

void DriverTest::Activate() { Require(headset_->Activate(kHeadsetIndex) == vr::VRInitError_None, "Activate"); }

void DriverTest::Connect() {
  Require(companion->OpenPipes(), "opening the pipes");
  Require(companion->WaitForConnection(), "waiting for the driver");
}

void DriverTest::Start() {
  Init();
  Activate();
  Connect();
}

void DriverTest::Reconnect() {
  companion->ClosePipes();
  Connect();
}

void DriverTest::Cleanup() { module_->Provider().Cleanup(); }

RuntimeSide::Shared DriverTest::MakeKeyed(int width, int height) {
  auto shared = application.MakeShared(static_cast<UINT>(width), static_cast<UINT>(height), kFormat,
                                       D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ownHandles_.push_back(shared.handle);
  return shared;
}

std::size_t DriverTest::OutputsReleased() const {
  return static_cast<std::size_t>(std::ranges::count_if(calls.Of<Released>(), [this](const Released& released) {
    return std::ranges::find(ownHandles_, released.handle) == ownHandles_.end();
  }));
}

companion::FrameSharingInfo DriverTest::TakeAnnouncement(milliseconds timeout) {
  const auto message = companion->NextMessage(static_cast<std::uint32_t>(timeout.count()));
  Require(message && message->Is(companion::MessageType::FrameSharingInfo), "waiting for the announcement");
  const auto info = companion::DecodeFrameSharingInfo(message->payload);
  Require(info.has_value(), "reading the announcement");
  companion->Attach({info->sharedHandles[0], info->sharedHandles[1]}, info->name);
  return *info;
}

bool DriverTest::SendPose(float x) {
  if (!companion->Send(companion::EncodeQuaternionAndPosition({}, {x, 1.5F, 0.25F}))) return false;
  return bench::WaitUntil([&] { return HeadsetPose().vecPosition[0] == static_cast<double>(x); }, kPatience);
}

bool DriverTest::SendFrameRate(std::uint32_t framesPerSecond) {
  const auto counted = [this] {
    return std::ranges::count_if(runtime.Log().Lines(),
                                 [](const std::string& line) { return line.starts_with("Updating headset fps"); });
  };
  const auto before = counted();
  if (!companion->Send(companion::EncodeFramerateUpdate(framesPerSecond))) return false;
  // The headset speaks of it last.
  return runtime.Journal().WaitUntil([&] { return counted() > before; }, kPatience);
}

Area EyeMiddle(int eye, const bench::Rgba& rgba, int tolerance) {
  return EyeArea(eye == 0 ? "left eye" : "right eye", eye, bench::kSmallEyeWidth, bench::kSmallEyeHeight, 30, rgba,
                 tolerance);
}

}  // namespace ombrel::test
