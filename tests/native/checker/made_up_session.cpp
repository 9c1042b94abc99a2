#include "made_up_session.h"

#include <ombrel/protocol.h>

#include <algorithm>

namespace checker::test {
namespace {

constexpr double kConnectMs = 100;
constexpr double kFramesMs = 300;
constexpr std::uint32_t kBrokenPipe = 109;

Nanoseconds At(double ms) { return static_cast<Nanoseconds>((1000 + ms) * 1e6); }

}  // namespace

MadeUpSession::MadeUpSession(Empty) { Add(EventKind::kProcessFound, 0).subject = 7; }

MadeUpSession::MadeUpSession() : MadeUpSession(Empty{}) {
  Connect(kConnectMs);
  SendPoses(kConnectMs + 200, kEndMs);
  Announce(kFramesMs);
  int texture = 0;
  for (double ms = kFramesMs + 20; ms + 20 < kEndMs; ms += 20) {
    PassFrame(texture, ms);
    texture = 1 - texture;
  }
  AddPipe(EventKind::kPipeClosed, Pipe::kIn, kEndMs);
  AddPipe(EventKind::kPipeClosed, Pipe::kOut, kEndMs);
  Add(EventKind::kEnded, kEndMs + 1);
}

Event& MadeUpSession::Add(EventKind kind, double ms) {
  Event& event = events_.emplace_back();
  event.kind = kind;
  event.start = event.end = At(ms);
  return event;
}

Event& MadeUpSession::AddPipe(EventKind kind, Pipe pipe, double ms, std::uint32_t result) {
  Event& event = Add(kind, ms);
  event.pipe = pipe;
  event.result = result;
  return event;
}

void MadeUpSession::Connect(double ms) {
  writtenBytes_ = 0;
  AddPipe(EventKind::kPipeOpened, Pipe::kIn, ms);
  AddPipe(EventKind::kPipeDrained, Pipe::kIn, ms).key = 0;
  AddPipe(EventKind::kPipeOpened, Pipe::kOut, ms + 150);
}

void MadeUpSession::Disconnect(double ms) {
  AddPipe(EventKind::kPipeRead, Pipe::kOut, ms, kBrokenPipe);
  AddPipe(EventKind::kPipeClosed, Pipe::kIn, ms + 1);
  AddPipe(EventKind::kPipeClosed, Pipe::kOut, ms + 1);
}

void MadeUpSession::Send(double ms, const Bytes& bytes) { AddPipe(EventKind::kPipeRead, Pipe::kOut, ms).bytes = bytes; }

// In three pieces, as the driver writes.
void MadeUpSession::Receive(double ms, const Bytes& bytes, double readMs) {
  AddPipe(EventKind::kPipeWritten, Pipe::kIn, ms).bytes = Bytes(bytes.begin(), bytes.begin() + 4);
  AddPipe(EventKind::kPipeWritten, Pipe::kIn, ms).bytes = Bytes(bytes.begin() + 4, bytes.begin() + 8);
  AddPipe(EventKind::kPipeWritten, Pipe::kIn, ms).bytes = Bytes(bytes.begin() + 8, bytes.end());
  writtenBytes_ += bytes.size();
  AddPipe(EventKind::kPipeDrained, Pipe::kIn, readMs).key = writtenBytes_;
}

void MadeUpSession::Announce(double ms) {
  OmbrelFrameSharingInfo info{};
  info.sharedHandle0 = kTextures[0];
  info.sharedHandle1 = kTextures[1];
  Receive(ms, MessageOf(OMBREL_FRAME_SHARING_INFO, BytesOf(info)), ms + 1);
}

void MadeUpSession::SendPoses(double fromMs, double toMs, double everyMs) {
  for (double ms = fromMs; ms < toMs; ms += everyMs) Send(ms, Pose());
}

void MadeUpSession::PassFrame(int texture, double ms) {
  Release(Side::kDriver, texture, ms);
  Acquire(Side::kCompanion, texture, ms + 2);
  Read(texture, ms + 3);
  Release(Side::kCompanion, texture, ms + 4);
}

Event& MadeUpSession::Acquire(Side side, int texture, double ms, std::uint32_t result) {
  Event& event = Add(EventKind::kAcquired, ms);
  event.side = side;
  event.subject = kTextures[texture];
  event.result = result;
  return event;
}

Event& MadeUpSession::Release(Side side, int texture, double ms, std::uint32_t result) {
  Event& event = Acquire(side, texture, ms, result);
  event.kind = EventKind::kReleased;
  return event;
}

Event& MadeUpSession::Read(int texture, double ms) {
  Event& event = Acquire(Side::kCompanion, texture, ms);
  event.kind = EventKind::kTextureRead;
  return event;
}

void MadeUpSession::CutOffAt(double ms) {
  std::erase_if(events_, [ms](const Event& event) { return event.end >= At(ms); });
}

void MadeUpSession::Remove(EventKind kind) {
  std::erase_if(events_, [kind](const Event& event) { return event.kind == kind; });
}

Session MadeUpSession::Build() const { return BuildSession(InOrder(events_)); }

std::vector<Violation> MadeUpSession::Violations() const { return Judge(Build(), Watched::kBothSides); }

std::string MadeUpSession::Broken(Watched watched) const {
  std::string names;
  for (const Violation& violation : Judge(Build(), watched)) {
    names += (names.empty() ? "P" : " P") + std::to_string(static_cast<int>(violation.rule));
  }
  return names;
}

Bytes MessageOf(std::uint32_t type, const Bytes& payload) {
  Bytes bytes = BytesOf(OmbrelMessageHeader{static_cast<std::uint32_t>(payload.size()), type});
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  return bytes;
}

Bytes Pose(float w, float height) {
  return MessageOf(OMBREL_TRACKING_UPDATE,
                   BytesOf(OmbrelTrackingQuaternion{{0, 0, 0, w}, {0, height, 0}, OMBREL_POSE_QUATERNION}));
}

Bytes FrameRate(std::uint32_t rate) { return MessageOf(OMBREL_FRAMERATE_UPDATE, BytesOf(OmbrelFramerateUpdate{rate})); }

Bytes Controller(std::uint32_t id) {
  OmbrelControllerUpdate record{};
  record.controllerId = id;
  record.pose[0] = record.pose[5] = record.pose[10] = 1;
  return MessageOf(OMBREL_CONTROLLER_UPDATE, BytesOf(record));
}

Bytes Pulse() { return MessageOf(OMBREL_HAPTIC_PULSE, BytesOf(OmbrelHapticPulse{7, 1, 2, 0})); }

}  // namespace checker::test
