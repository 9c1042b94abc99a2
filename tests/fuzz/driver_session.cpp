#include "driver_session.h"

#include <cstring>
#include <utility>

#include "line.h"
#include "one_thread/world.h"
#include "platform/guarded.h"
#include "render/direct_mode_component.h"
#include "stream_model.h"

namespace ombrel::test {
namespace {

// At each of a connection's first reads, and then now and then.
bool IsTimeForAFrame(std::size_t reads) { return reads <= 8 || reads % 32 == 0; }

}  // namespace

DriverSession::DriverSession() {
  runtime_.KeepNothing();
  runtime_.Settings().Set("driver_ombrel", "fakeSensorEnabled", false);
  runtime_.Host().onAdded = [this](const bench::AddedDevice& added) { OnDeviceAdded(added.deviceClass, added.driver); };
  runtime_.Poses().Listen([this](const bench::PoseRecord& record) { OnPose(record); });
  runtime_.Host().nextEvent = [this](vr::VREvent_t* event) { return NextEvent(event); };
  runtime_.Input().onUpdate = [this](const bench::InputUpdate& update) { OnInput(update); };
  runtime_.Properties().onWrite = [this](auto /*container*/, const vr::PropertyWrite_t& write) {
    if (write.prop != vr::Prop_DisplayFrequency_Float || headset_ == nullptr) return;
    float frequency = 0.0F;
    std::memcpy(&frequency, write.pvBuffer, sizeof(frequency));
    lines_.push_back(Line("frequency") << frequency);
  };
}

void DriverSession::Run(std::vector<std::vector<std::byte>> connections, std::function<std::size_t()> nextPiece) {
  World& world = TheWorld();
  world.Reset(std::move(connections));
  world.nextPiece = std::move(nextPiece);
  world.beforeRead = [this] { BeforeRead(); };
  world.onNobodyThere = [this] { headset_->Core().StopLink(); };
  provider_ = std::make_unique<CServerDriver_Ombrel>();
  HMDDriver* made = nullptr;
  const auto onAdded = std::exchange(
      runtime_.Host().onAdded, [&](const bench::AddedDevice& added) { made = dynamic_cast<HMDDriver*>(added.driver); });
  if (provider_->Init(&runtime_) != vr::VRInitError_None || made == nullptr) GiveUp("the driver did not start");
  made->Activate(0);
  runtime_.Host().onAdded = onAdded;
  headset_ = made;
  CompanionPipeClient& client = headset_->Core().Client();
  client.AddListener(static_cast<ITrackingUpdatedListener*>(this));
  client.AddListener(static_cast<IFramerateUpdatedListener*>(this));
  client.AddListener(static_cast<IControllerUpdatedListener*>(this));
  world.RunThreads();
  provider_->Cleanup();
  provider_.reset();
  world.ForgetHooks();
}

void DriverSession::OnDeviceAdded(vr::ETrackedDeviceClass deviceClass, vr::ITrackedDeviceServerDriver* device) {
  lines_.push_back(Line("added") << static_cast<int>(deviceClass));
  const auto* controller = dynamic_cast<ControllerDevice*>(device);
  ++devices_;
  if (controller == nullptr || static_cast<std::uint32_t>(controller->ControllerId()) % 4 == 3) return;
  device->Activate(devices_);
  vibrating_ = devices_;
}

void DriverSession::OnInput(const bench::InputUpdate& update) {
  static const auto proximity = bench::FakeDriverInput::HandleOf(bench::FakeProperties::ContainerOf(0), "/proximity");
  if (update.kind == bench::InputKind::Scalar) {
    lines_.push_back(Line("scalar") << update.handle << update.scalarValue);
  } else if (update.handle != proximity) {
    lines_.push_back(Line("boolean") << update.handle << update.boolValue);
  }
}

void DriverSession::OnPose(const bench::PoseRecord& record) {
  const vr::DriverPose_t& pose = record.pose;
  if (record.structSize != sizeof(pose)) Complain("a pose of another size");
  if (record.device == 0) {
    // The one that Activate sends comes before any bytes do.
    if (headset_ == nullptr) return;
    lastHeadPose_ = pose;
    Line line("head");
    line.All(pose.vecPosition) << static_cast<int>(pose.result) << pose.poseIsValid << pose.deviceIsConnected;
    lines_.push_back(line);
    return;
  }
  Line line("pose");
  (line << record.device).All(pose.vecPosition).All(pose.vecAcceleration).All(pose.vecVelocity);
  lines_.push_back(line << static_cast<int>(pose.result) << pose.poseIsValid << pose.deviceIsConnected);
}

bool DriverSession::NextEvent(vr::VREvent_t* event) {
  if (vibrating_ == 0) return false;
  event->eventType = vr::VREvent_Input_HapticVibration;
  event->data.hapticVibration.containerHandle = bench::FakeProperties::ContainerOf(std::exchange(vibrating_, 0));
  event->data.hapticVibration.fDurationSeconds = 0.003F;
  return true;
}

void DriverSession::BeforeRead() {
  if (!IsTimeForAFrame(TheWorld().Reads())) return;
  provider_->RunFrame();
  PresentFrame();
  vr::DriverPose_t pose{};
  headset_->GetPose(&pose);
}

void DriverSession::PresentFrame() {
  auto* component =
      static_cast<vr::IVRDriverDirectModeComponent*>(headset_->GetComponent(vr::IVRDriverDirectModeComponent_Version));
  const vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2]{};
  const vr::HmdMatrix34_t pose{};
  component->SubmitLayer(eyes, &pose);
  component->Present(TheWorld().Reads() % 2);
  const std::int64_t before = TheWorld().now;
  component->PostPresent();
  if (TheWorld().now - before > 11'000'000) Complain("a frame was paced for more than a second");
}

void DriverSession::OnTrackingUpdated() {
  const LinkPoseRecord record = headset_->Core().Client().PublishedPose();
  const std::array<float, 3> position{record.position.x, record.position.y, record.position.z};
  lines_.push_back(Line("tracking").All(position) << record.trackingState);
  records_.push_back(record);
  headPoses_.push_back(lastHeadPose_);
}

void DriverSession::OnFramerateUpdated(std::uint32_t framesPerSecond) {
  lines_.push_back(Line("framerate") << framesPerSecond);
}

void DriverSession::OnControllerUpdated(const ControllerUpdate* record) {
  lines_.push_back(RecordLine(RecordBytes(*record)));
}

void DriverSession::Complain(const std::string& problem) {
  if (problem_.empty()) problem_ = problem;
}

}  // namespace ombrel::test
