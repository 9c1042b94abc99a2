#include "vector_session.h"

#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "devices/controller_device.h"
#include "hmd/hmd_driver.h"
#include "one_thread/world.h"
#include "server_driver_ombrel.h"

namespace ombrel::test {
namespace {

class Session {
 public:
  Session() {
    runtime_.KeepNothing();
    runtime_.Settings().Set("driver_ombrel", "fakeSensorEnabled", false);
    runtime_.Host().onAdded = [this](const bench::AddedDevice& added) { OnAdded(added); };
    runtime_.Poses().Listen([this](const bench::PoseRecord& record) { OnPose(record); });
    runtime_.Input().onUpdate = [this](const bench::InputUpdate& update) { OnInput(update); };
    runtime_.Properties().onWrite = [this](auto /*container*/, const vr::PropertyWrite_t& write) {
      if (write.prop != vr::Prop_DisplayFrequency_Float || !isRunning_) return;
      float frequency = 0.0F;
      std::memcpy(&frequency, write.pvBuffer, sizeof(frequency));
      effects_.framerates.push_back(frequency);
    };
  }

  Effects Run(const std::vector<std::byte>& bytes) {
    World& world = TheWorld();
    world.Reset({bytes});
    world.nextPiece = [] { return std::numeric_limits<std::size_t>::max(); };
    world.beforeRead = [] {};
    world.onNobodyThere = [this] { headset_->Core().StopLink(); };
    CServerDriver_Ombrel provider;
    if (provider.Init(&runtime_) != vr::VRInitError_None || headset_ == nullptr) GiveUp("the driver did not start");
    headset_->Activate(0);
    isRunning_ = true;
    world.RunThreads();
    isRunning_ = false;
    provider.Cleanup();
    effects_.shutdowns = world.monitorEnds;
    effects_.connectionEnded = world.readToItsEnd != std::vector<bool>{true};
    return std::move(effects_);
  }

 private:
  void OnAdded(const bench::AddedDevice& added) {
    const auto* controller = dynamic_cast<ControllerDevice*>(added.driver);
    if (controller == nullptr) {
      headset_ = dynamic_cast<HMDDriver*>(added.driver);
      return;
    }
    ids_.push_back(static_cast<std::uint32_t>(controller->ControllerId()));
    effects_.announced.push_back(ids_.back());
    added.driver->Activate(static_cast<std::uint32_t>(ids_.size()));
  }

  void OnPose(const bench::PoseRecord& record) {
    if (!isRunning_) return;
    if (record.device == 0) {
      effects_.head.push_back(record.pose);
    } else {
      effects_.controllers.emplace_back(ids_.at(record.device - 1), record.pose);
    }
  }

  void OnInput(const bench::InputUpdate& update) {
    static constexpr const char* kPaths[] = {
        "/input/system/click",   "/input/application_menu/click", "/input/grip/click",
        "/input/trackpad/click", "/input/trackpad/touch",         "/input/trackpad/x",
        "/input/trackpad/y",     "/input/trigger/click",          "/input/trigger/value"};
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      const auto container = bench::FakeProperties::ContainerOf(static_cast<std::uint32_t>(i + 1));
      for (const char* path : kPaths) {
        if (update.handle != bench::FakeDriverInput::HandleOf(container, path)) continue;
        const bool isButton = update.kind == bench::InputKind::Boolean;
        const double value = isButton ? static_cast<double>(update.boolValue) : static_cast<double>(update.scalarValue);
        effects_.inputs.emplace_back(std::to_string(ids_[i]) + ' ' + path, value);
      }
    }
  }

  bench::FakeRuntime runtime_;
  HMDDriver* headset_ = nullptr;
  bool isRunning_ = false;
  std::vector<std::uint32_t> ids_;
  Effects effects_;
};

template <typename Value>
std::vector<Value> Without(const std::vector<Value>& all, const std::vector<Value>& first) {
  return {all.begin() + static_cast<std::ptrdiff_t>(first.size()), all.end()};
}

}  // namespace

Effects Effects::Behind(const Effects& before) const {
  return {Without(head, before.head),
          Without(controllers, before.controllers),
          Without(announced, before.announced),
          Without(inputs, before.inputs),
          Without(framerates, before.framerates),
          shutdowns - before.shutdowns,
          connectionEnded};
}

Effects EffectsOf(const std::vector<std::byte>& bytes) { return Session().Run(bytes); }

}  // namespace ombrel::test
