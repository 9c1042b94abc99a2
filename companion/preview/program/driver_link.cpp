#include "driver_link.h"

#include <chrono>

#include "companion/controller_record.h"
#include "companion/tracking_update.h"

namespace preview {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kRepeat = std::chrono::milliseconds(20);
// No more poses than this, whatever the pages send.
constexpr auto kPause = std::chrono::milliseconds(2);
constexpr auto kHistory = std::chrono::seconds(5);
// Each pose differs from the last by less than an eye sees and more than a float loses, so that frames of a head at rest
// are told apart.
constexpr float kTagStep = 2e-6F;
constexpr std::uint64_t kTags = 10000;
constexpr float kPoseTolerance = 1e-5F;
constexpr float kHeadHeight = 1.7F;
// Where the hands rest, before a head at the origin that looks straight ahead.
constexpr std::array<companion::Position, kControllers> kHands = {{{-0.2F, 1.5F, -0.6F}, {0.2F, 1.5F, -0.6F}}};

// The history's ticks are this clock's.
std::int64_t Now() { return Clock::now().time_since_epoch().count(); }

}  // namespace

DriverLink::DriverLink() : history_(Now(), Clock::duration(kHistory).count()) {}

DriverLink::~DriverLink() {
  Wish([this](Wishes&) { stop_ = true; });
  pipes_.Close();  // frees a write that the driver does not read
  if (thread_.joinable()) thread_.join();
}

bool DriverLink::Open() {
  if (!pipes_.Open()) return false;
  thread_ = std::thread([this] { Run(); });
  return true;
}

template <typename Change>
void DriverLink::Wish(Change change) {
  const std::scoped_lock lock(wishesMutex_);
  change(wishes_);
  wished_ = true;
  changed_.notify_one();
}

void DriverLink::OnHead(const HeadMessage& head) {
  Wish([&](Wishes& wishes) { wishes.head = head; });
}

void DriverLink::OnRate(std::uint32_t framesPerSecond) {
  Wish([&](Wishes& wishes) { wishes.rate = framesPerSecond; });
}

void DriverLink::OnRecenter() {
  Wish([](Wishes& wishes) { wishes.recenter = true; });
}

void DriverLink::OnController(const ControllerMessage& controller) {
  Wish([&](Wishes& wishes) {
    wishes.controllers[controller.id - 1] = controller;
    wishes.controllersGone = false;
  });
}

void DriverLink::OnControllersGone() {
  Wish([](Wishes& wishes) { wishes.controllersGone = true; });
}

void DriverLink::Run() {
  std::uint32_t connections = 0;
  std::optional<std::uint32_t> rate;
  while (true) {
    Wishes wishes;
    {
      std::unique_lock lock(wishesMutex_);
      changed_.wait_for(lock, kRepeat, [this] { return wished_; });
      if (stop_) return;
      wished_ = false;
      wishes = wishes_;
      wishes_.recenter = false;
    }
    const bool connected = pipes_.Connected();
    const bool newConnection = connected && pipes_.Connections() != connections;
    if (connected) connections = pipes_.Connections();
    if (connected && (newConnection || wishes.rate != rate) && wishes.rate) {
      SendMessage(companion::EncodeFramerateUpdate(*wishes.rate));
      rate = wishes.rate;
    }
    if (connected) Send(wishes, newConnection);
    std::this_thread::sleep_for(kPause);
  }
}

void DriverLink::Send(const Wishes& wishes, bool newConnection) {
  // The driver may be another one, and a former companion may have recentered this one.
  if (newConnection) Recenter(straightAhead_);
  if (wishes.recenter) Recenter(wishes.head);
  SendHead(wishes.head);
  SendControllers(wishes);
}

void DriverLink::SendHead(const HeadMessage& head) {
  const auto& [x, y, z, w] = head.orientation;
  const companion::Position position{0, kHeadHeight, kTagStep * static_cast<float>(posesSent_++ % kTags)};
  SendMessage(companion::EncodeQuaternionAndPosition({x, y, z, w}, position), head.number);
}

void DriverLink::Recenter(const HeadMessage& head) {
  straightAhead_ = head;
  SendHead(head);
  SendMessage(companion::EncodeRecenterRequest());
}

void DriverLink::SendControllers(const Wishes& wishes) {
  for (std::size_t i = 0; i < kControllers; ++i) {
    if (!wishes.controllers[i]) continue;
    const ControllerMessage& wanted = *wishes.controllers[i];
    companion::ControllerRecord record;
    record.controllerId = wanted.id;
    record.pose = companion::ToPoseMatrix({}, kHands[i]);
    if (wishes.controllersGone) {
      record.trackingState = OMBREL_NOT_CONNECTED;
    } else {
      record.pressedButtons = wanted.pressed;
      record.touchedButtons = wanted.touched;
      record.axes[0] = {wanted.trackpad[0], wanted.trackpad[1]};
      record.axes[1].x = wanted.trigger;
    }
    SendMessage(companion::EncodeControllerUpdate(record));
  }
}

void DriverLink::SendMessage(const companion::Bytes& message, std::uint32_t poseNumber) {
  {
    // Before the write, so that no frame can come back with a pose that is not known yet.
    const std::scoped_lock lock(historyMutex_);
    if (model_.Apply(message)) {
      history_.Add(Now(), model_.Published());
      pageNumbers_[history_.LastNumber() % kNumbersKept] = poseNumber;
    }
  }
  pipes_.Send(message);
}

std::optional<ShownPose> DriverLink::PoseOf(const companion::PoseSlot& slot, Clock::time_point when) const {
  const std::scoped_lock lock(historyMutex_);
  const auto match = history_.Match(slot, kPoseTolerance);
  if (!match) return std::nullopt;
  const Clock::time_point sent{Clock::duration(match->sent.sentTicks)};
  return ShownPose{pageNumbers_[match->sent.number % kNumbersKept],
                   std::chrono::duration<float, std::milli>(when - sent).count()};
}

}  // namespace preview
