#include "runtime/runtime_session.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/clock.h"

namespace bench {

RuntimeSession::RuntimeSession(FakeRuntime& runtime, vr::IServerTrackedDeviceProvider& provider)
    : runtime_(runtime), provider_(provider) {}

RuntimeSession::~RuntimeSession() {
  try {
    Cleanup();
  } catch (...) {
    runtime_.Journal().Append("driver.Cleanup threw", nlohmann::ordered_json::object());
  }
}

vr::EVRInitError RuntimeSession::Init() {
  vr::EVRInitError result = vr::VRInitError_None;
  thread_.Run([&] {
    runtime_.Journal().Append("driver.Init", nlohmann::ordered_json::object());
    result = provider_.Init(&runtime_);
    runtime_.Journal().Append("driver.Init returned", {{"result", static_cast<int>(result)}});
    initialised_ = true;
    if (result == vr::VRInitError_None) {
      ActivatePendingHere();
    }
  });
  return result;
}

void RuntimeSession::ActivatePendingHere() {
  for (const AddedDevice& added : runtime_.Host().TakePending()) {
    runtime_.Journal().Append("driver.Activate", {{"serial", added.serial}, {"device", added.index}});
    ActiveDevice active{added, FakeProperties::ContainerOf(added.index), added.driver->Activate(added.index)};
    {
      const std::lock_guard lock(mutex_);
      devices_.push_back(active);
    }
    runtime_.Journal().Append("driver.Activate returned",
                              {{"serial", added.serial}, {"result", static_cast<int>(active.activation)}});
  }
}

void RuntimeSession::RunFrameHere() {
  ActivatePendingHere();
  const std::int64_t start = NowTicks();
  provider_.RunFrame();
  longestFrameMs_ = std::max(longestFrameMs_.load(), TicksToMilliseconds(NowTicks() - start));
  ++frames_;
}

void RuntimeSession::StartFrames(double hertz) {
  thread_.SetTick([this] { RunFrameHere(); }, hertz);
}

void RuntimeSession::StopFrames() { thread_.SetTick({}, 0.0); }

void RuntimeSession::ActivatePending() {
  thread_.Run([this] { ActivatePendingHere(); });
}

void RuntimeSession::Deactivate() {
  thread_.Run([this] {
    std::vector<ActiveDevice> devices = Devices();
    {
      const std::lock_guard lock(mutex_);
      devices_.clear();
    }
    std::ranges::reverse(devices);  // the last one first
    for (const ActiveDevice& device : devices) {
      runtime_.Journal().Append("driver.Deactivate", {{"serial", device.added.serial}});
      device.added.driver->Deactivate();
    }
  });
}

void RuntimeSession::Cleanup() {
  StopFrames();
  thread_.Run([this] {
    if (!std::exchange(initialised_, false)) {
      return;
    }
    {
      const std::lock_guard lock(mutex_);
      devices_.clear();
    }
    runtime_.Journal().Append("driver.Cleanup", nlohmann::ordered_json::object());
    provider_.Cleanup();
    runtime_.Journal().Append("driver.Cleanup returned", nlohmann::ordered_json::object());
  });
}

std::vector<ActiveDevice> RuntimeSession::Devices() const {
  const std::lock_guard lock(mutex_);
  return devices_;
}

std::optional<ActiveDevice> RuntimeSession::Find(vr::ETrackedDeviceClass deviceClass) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find_if(
      devices_, [deviceClass](const ActiveDevice& device) { return device.added.deviceClass == deviceClass; });
  return found == devices_.end() ? std::nullopt : std::optional(*found);
}

void* ComponentOf(vr::ITrackedDeviceServerDriver& device, const char* version) {
  void* component = device.GetComponent(version);
  if (component == nullptr) throw std::runtime_error(std::string("the device has no ") + version);
  return component;
}

}  // namespace bench
