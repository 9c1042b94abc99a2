#include "frame_companion.h"

#include <stdexcept>

#include "base/clock.h"
#include "base/wait.h"
#include "companion/tracking_update.h"
#include "runtime/keyed_texture.h"
#include "sharing/sharing_device.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using Microsoft::WRL::ComPtr;
using std::chrono::milliseconds;

constexpr milliseconds kPatience{kPatienceMs};
constexpr std::size_t kTranslationX = 3;  // in a pose slot

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
  // Drops queued messages: a stale announcement must not pass for the next connection's.
  while (pipes_.Next(0)) {
  }
}

bool FrameCompanion::TakeAnnouncement(std::uint32_t timeoutMs) {
  const auto received = pipes_.Next(timeoutMs);
  if (!received || !received->message.Is(MessageType::FrameSharingInfo)) return false;
  const auto info = DecodeFrameSharingInfo(received->message.payload);
  if (!info) return false;
  announced_ = *info;
  if (frames_.Open(*info) != S_OK) return false;
  // Nothing is ever drawn into them, so that giving them back need not copy them back.
  return MarkReadOnly(frames_.Texture(0)) == S_OK && MarkReadOnly(frames_.Texture(1)) == S_OK;
}

std::optional<PoseSlot> FrameCompanion::TakeFrame(std::uint32_t timeoutMs) {
  FrameInfo frame;
  const auto noPixels = [](const FrameInfo&) { return false; };
  if (frames_.Next(timeoutMs, noPixels, frame) != TurnResult::FrameHeld) return std::nullopt;
  return frame.slot;
}

std::string TakeFrames(FrameCompanion& companion, int count, const std::function<float()>& play) {
  int taken = 0;
  std::string fault;
  const auto takeOne = [&] {
    const float number = play();
    if (!companion.Frames().IsOpen() && !companion.TakeAnnouncement(10)) return false;
    const auto slot = companion.TakeFrame(50);
    if (!slot) return false;
    // Layers from before the connection are drawn in its first frame, which has the pose of the first of them.
    if (taken > 0 && (*slot)[kTranslationX] != number) fault = "a frame with another frame's pose";
    ++taken;
    return true;
  };
  // WaitUntil pauses each time that it looks: only where a frame did not come.
  const auto takeAll = [&] {
    while (taken < count && fault.empty()) {
      if (!takeOne()) return false;
    }
    return true;
  };
  if (WaitUntil(takeAll, kPatience)) return fault;
  return "only " + std::to_string(taken) + " frames of " + std::to_string(count);
}

namespace {

std::string PlayLayers(DriverLife& life, FrameCompanion& companion, int count) {
  static float number = 0;
  const auto eye = life.OneSwapSet()[0];
  return TakeFrames(companion, count, [&] {
    // Wraps round, so that a float holds it exactly; only neighbours have to differ.
    number = number < 1000 ? number + 1 : 1;
    life.SubmitLayer(eye, number);
    life.Present();
    return number;
  });
}

std::string PlayTextures(DriverLife& life, FrameCompanion& companion, int count) {
  static KeyedTexture texture(*RuntimeDevice().Get(), 1000, 600, DXGI_FORMAT_R8G8B8A8_UNORM);
  const PoseStream poses(companion.Pipes());  // a frame waits for one
  return TakeFrames(companion, count, [&] {
    life.Present(texture.Handle());
    return 0.0F;  // the slots are not written
  });
}

}  // namespace

std::string PlayFrames(DriverLife& life, FrameCompanion& companion, int count) {
  return life.HasLayers() ? PlayLayers(life, companion, count) : PlayTextures(life, companion, count);
}

PoseStream::PoseStream(PipeServer& pipes)
    : thread_([this, &pipes] {
        while (!stop_) {
          static_cast<void>(pipes.Send(EncodeQuaternionAndPosition({}, {0, 1.5F, 0})));
          std::this_thread::sleep_for(milliseconds(2));
        }
      }) {}

PoseStream::~PoseStream() {
  stop_ = true;
  thread_.join();
}

bool PoseArrives(DriverLife& life, PipeServer& pipes, float x) {
  if (!pipes.Send(EncodeQuaternionAndPosition({}, {x, 1.5F, 0}))) return false;
  return WaitUntil([&] { return life.Pose().vecPosition[0] == static_cast<double>(x); }, kPatience);
}

bool CheckFrames(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, int count) {
  const std::string fault = PlayFrames(life, companion, count);
  return run.Check(fault.empty(), "frames come: " + fault);
}

bool CheckConnection(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, int frames) {
  static float x = 1000;
  if (!run.Check(companion.Connect(), "the driver connects to the companion")) return false;
  return CheckFrames(run, life, companion, frames) &&
         run.Check(PoseArrives(life, companion.Pipes(), ++x), "poses arrive");
}

void CheckNewCompanion(ScenarioRun& run, DriverLife& life) {
  const std::int64_t begin = NowTicks();
  FrameCompanion companion;
  if (!CheckConnection(run, life, companion)) return;
  run.Figure("3 frames and a pose with a new companion after %.0f ms", TicksToMilliseconds(NowTicks() - begin));
}

}  // namespace bench::scenarios
