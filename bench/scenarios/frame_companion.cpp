#include "frame_companion.h"

#include <stdexcept>

#include "companion/tracking_update.h"
#include "runtime/clock.h"
#include "runtime/wait.h"
#include "sharing/sharing_device.h"

namespace bench::scenarios {
namespace {

using Microsoft::WRL::ComPtr;
using std::chrono::milliseconds;

constexpr milliseconds kPatience{kPatienceMs};

ComPtr<ID3D11Device> MakeDevice() {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  if (CreateSharingDevice(&device, &context) != S_OK) throw std::runtime_error("no Direct3D device");
  return device;
}

}  // namespace

ComPtr<ID3D11Device> RuntimeDevice() {
  static const ComPtr<ID3D11Device> device = MakeDevice();
  return device;
}

ComPtr<ID3D11Device> CompanionDevice() {
  static const ComPtr<ID3D11Device> device = MakeDevice();
  return device;
}

bool FrameCompanion::Connect() {
  // A process that was killed may keep its pipes' names for a moment.
  return WaitUntil([this] { return pipes_.Open(); }, kPatience) && pipes_.WaitForConnection(kPatienceMs);
}

void FrameCompanion::Close() {
  pipes_.Close();
  frames_.Close();
  // What an earlier connection brought is not to be taken for news of the next.
  while (pipes_.Next(0)) {
  }
}

bool FrameCompanion::TakeAnnouncement(std::uint32_t timeoutMs) {
  const auto received = pipes_.Next(timeoutMs);
  if (!received || !received->message.Is(MessageType::FrameSharingInfo)) return false;
  const auto info = DecodeFrameSharingInfo(received->message.payload);
  if (!info) return false;
  announced_ = *info;
  return frames_.Open(*info) == S_OK;
}

std::optional<PoseSlot> FrameCompanion::TakeFrame(std::uint32_t timeoutMs) {
  FrameInfo frame;
  const auto noPixels = [](const FrameInfo&) { return false; };
  if (frames_.Next(timeoutMs, noPixels, frame) != TurnResult::FrameHeld) return std::nullopt;
  return frame.slot;
}

std::string PlayFrames(DriverLife& life, FrameCompanion& companion, int count) {
  constexpr std::size_t kTranslationX = 3;
  static float number = 0;
  int taken = 0;
  const auto set = life.CreateSwapSet();
  std::string fault;
  const bool inTime = WaitUntil(
      [&] {
        life.SubmitLayer(set[0], ++number);
        life.Present();
        if (!companion.Frames().IsOpen() && !companion.TakeAnnouncement(10)) return false;
        const auto slot = companion.TakeFrame(50);
        if (!slot) return false;
        // Layers from before the connection are drawn in its first frame, which has the pose of the first of them.
        if (taken > 0 && (*slot)[kTranslationX] != number) fault = "a frame with another frame's pose";
        return ++taken == count || !fault.empty();
      },
      kPatience);
  life.DestroySwapSet(set[0]);
  if (!inTime) fault = "only " + std::to_string(taken) + " frames of " + std::to_string(count);
  return fault;
}

bool PoseArrives(DriverLife& life, PipeServer& pipes, float x) {
  if (!pipes.Send(EncodeQuaternionAndPosition({}, {x, 1.5F, 0}))) return false;
  return WaitUntil([&] { return life.Pose().vecPosition[0] == static_cast<double>(x); }, kPatience);
}

bool CheckConnection(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, int frames) {
  static float x = 1000;
  if (!run.Check(companion.Connect(), "the driver connects to the companion")) return false;
  const std::string fault = PlayFrames(life, companion, frames);
  return run.Check(fault.empty(), "frames come: " + fault) &&
         run.Check(PoseArrives(life, companion.Pipes(), ++x), "poses arrive");
}

void CheckNewCompanion(ScenarioRun& run, DriverLife& life) {
  const std::int64_t begin = runtime::NowTicks();
  FrameCompanion companion;
  if (!CheckConnection(run, life, companion)) return;
  run.Figure("3 frames and a pose with a new companion after %.0f ms",
             runtime::TicksToMilliseconds(runtime::NowTicks() - begin));
}

}  // namespace bench::scenarios
