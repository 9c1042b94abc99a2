// A companion that keeps to the protocol but for the faults that it is told to have. Each shows within four seconds.
#include <windows.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "faults.h"
#include "frames.h"
#include "pipes.h"

namespace {

constexpr DWORD kPoseIntervalMs = 10;
constexpr std::uint32_t kUnknownType = 99;
// In time for pulses before and after it.
constexpr ULONGLONG kHalfCloseMs = 1500;
constexpr int kLastFrame = 22;

OmbrelTrackingQuaternion PoseAt(double seconds) {
  const auto half = static_cast<float>(std::sin(seconds) / 4);
  return {{0, std::sin(half), 0, std::cos(half)}, {0, OMBREL_DEFAULT_HEAD_HEIGHT, 0}, OMBREL_POSE_QUATERNION};
}

OmbrelControllerUpdate ControllerOf(std::uint32_t id) {
  OmbrelControllerUpdate record{};
  record.controllerId = id;
  record.pose[0] = record.pose[5] = record.pose[10] = 1;
  record.pose[7] = 1;
  return record;
}

void SendFirst(const Faults& faults, const Pipes& pipes) {
  if (faults.Has("position-first")) {
    pipes.SendStructure(OMBREL_TRACKING_UPDATE, OmbrelTrackingPosition{{0, 1, 0}, OMBREL_POSE_POSITION_ONLY});
  }
  pipes.SendStructure(OMBREL_TRACKING_UPDATE, PoseAt(0));
}

void SendBadMessages(const Faults& faults, const Pipes& pipes) {
  OmbrelTrackingQuaternion pose = PoseAt(0);
  if (faults.Has("short-message")) pipes.SendStructure(OMBREL_CONTROLLER_UPDATE, pose);
  if (faults.Has("unknown-type")) pipes.SendStructure(kUnknownType, pose);
  if (faults.Has("no-number")) {
    pose.position[1] = std::numeric_limits<float>::quiet_NaN();
    pipes.SendStructure(OMBREL_TRACKING_UPDATE, pose);
  }
  if (faults.Has("long-rotation")) {
    pose = PoseAt(0);
    pose.orientation[3] = 2;
    pipes.SendStructure(OMBREL_TRACKING_UPDATE, pose);
  }
  if (faults.Has("rate-zero")) {
    pipes.SendStructure(OMBREL_FRAMERATE_UPDATE, OmbrelFramerateUpdate{0});
    pipes.SendStructure(OMBREL_FRAMERATE_UPDATE, OmbrelFramerateUpdate{OMBREL_DEFAULT_FRAME_RATE});
  }
  for (std::uint32_t id = 2; faults.Has("many-controllers") && id < 66; ++id) {
    pipes.SendStructure(OMBREL_CONTROLLER_UPDATE, ControllerOf(id));
  }
}

void SendStrangely(const Faults& faults, const Pipes& pipes) {
  if (faults.Has("stalled-message")) {
    const OmbrelMessageHeader header{sizeof(OmbrelTrackingFormatOnly), OMBREL_TRACKING_UPDATE};
    std::uint8_t bytes[sizeof(header)];
    std::memcpy(bytes, &header, sizeof(header));
    pipes.Send(bytes);
    Sleep(200);
    const std::uint8_t rest[] = {OMBREL_POSE_REPEAT, 0, 0, 0};
    pipes.Send(rest);
  }
  if (faults.Has("flood")) {
    for (int i = 0; i < 1500; ++i) pipes.SendStructure(OMBREL_TRACKING_UPDATE, PoseAt(0));
  }
  if (faults.Has("pause")) Sleep(1300);
}

// The driver ends the connection, and comes again.
void SendTooLong(Pipes& pipes) {
  const OmbrelMessageHeader header{OMBREL_MAX_PAYLOAD + 1, OMBREL_TRACKING_UPDATE};
  std::uint8_t bytes[sizeof(header)];
  std::memcpy(bytes, &header, sizeof(header));
  pipes.Send(bytes);
  Sleep(200);
  pipes.Disconnect();
  pipes.Accept();
}

class Companion {
 public:
  explicit Companion(Faults faults) : faults_(std::move(faults)), frames_(faults_), pipes_(faults_) {}

  void Run() {
    std::puts("companion: pipes open");
    std::fflush(stdout);
    pipes_.Accept();
    SendFirst(faults_, pipes_);
    while (Step()) Sleep(kPoseIntervalMs);
    pipes_.Disconnect();
    frames_.Close();
    if (faults_.Has("keep-block")) Sleep(10'000);
  }

 private:
  // One pose, and a frame if there is one. False once the connection is over.
  bool Step() {
    const double seconds = ++steps_ * 0.01;
    if (!pipes_.SendStructure(OMBREL_TRACKING_UPDATE, PoseAt(seconds))) return false;
    if (steps_ % 10 == 0) pipes_.SendStructure(OMBREL_CONTROLLER_UPDATE, ControllerOf(1));
    TakeFrame();
    if (steps_ == 20) SendBadMessages(faults_, pipes_);
    if (steps_ == 30) SendStrangely(faults_, pipes_);
    if (steps_ == 40 && faults_.Has("long-message")) SendTooLong(pipes_);
    EndBadly();
    return true;
  }

  // Once frames have been coming for a while.
  void EndBadly() {
    if (!frames_.IsOpen()) return;
    if (streamingSince_ == 0) streamingSince_ = GetTickCount64();
    if (faults_.Has("half-close") && GetTickCount64() - streamingSince_ > kHalfCloseMs) pipes_.CloseIn();
    if (faults_.Has("end-connected") && frames_.Taken() >= kLastFrame) std::exit(0);
  }

  void TakeFrame() {
    if (faults_.Has("no-frames")) return;
    const auto announcement = pipes_.Announcement();
    if (announcement && !frames_.IsOpen()) frames_.Open(*announcement);
    if (frames_.IsOpen()) frames_.TakeOne();
  }

  Faults faults_;
  Frames frames_;
  Pipes pipes_;
  int steps_ = 0;
  ULONGLONG streamingSince_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::set<std::string> faults;
  CLI::App app("A companion with faults");
  app.add_option("--fault", faults, "What to do wrong")->check(CLI::IsMember(Faults::Known()));
  CLI11_PARSE(app, argc, argv);
  try {
    Companion(Faults(faults)).Run();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "companion: %s\n", error.what());
    return 1;
  }
}
