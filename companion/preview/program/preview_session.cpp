#include "preview_session.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>

namespace preview {
namespace {

using Clock = std::chrono::steady_clock;
using companion::MessageType;

constexpr std::uint32_t kIdleMs = 10;

}  // namespace

PreviewSession::PreviewSession(const Options& options) : encoder_(options.quality), server_(options.port, link_) {
  if (!link_.Open()) throw std::runtime_error("the pipes are taken: is another Ombrel.exe running?");
}

void PreviewSession::Run(const std::function<bool()>& ended) {
  while (!ended()) {
    NoticeConnection();
    TakeMessages(frames_.IsOpen() ? 0 : kIdleMs);
    if (frames_.IsOpen()) TakeFrame();
  }
}

void PreviewSession::NoticeConnection() {
  const bool connected = link_.Pipes().Connected();
  const std::uint32_t connection = link_.Pipes().Connections();
  if (connected == connected_ && connection == connection_) return;
  connected_ = connected;
  connection_ = connection;
  frames_.Close();  // those of the former connection
  server_.SetDriver(connected);
  std::printf("preview: %s\n", connected ? "the driver is here" : "the driver has gone");
  std::fflush(stdout);
}

void PreviewSession::TakeMessages(std::uint32_t timeoutMs) {
  while (const auto received = link_.Pipes().Next(timeoutMs)) {
    timeoutMs = 0;
    NoticeConnection();
    if (received->connection != connection_) continue;
    if (received->message.Is(MessageType::FrameSharingInfo)) Announce(received->message.payload);
    if (!received->message.Is(MessageType::HapticPulse)) continue;
    const auto pulse = companion::DecodeHapticPulse(received->message.payload);
    if (pulse) server_.Pulse(pulse->controllerId, pulse->durationMicroseconds);
  }
}

void PreviewSession::Announce(const companion::Bytes& payload) {
  const auto info = companion::DecodeFrameSharingInfo(payload);
  if (info && frames_.Open(*info)) return;
  std::fprintf(stderr, "preview: the driver's textures cannot be opened\n");
}

void PreviewSession::TakeFrame() {
  bool wanted = false;
  Clock::time_point when;
  const auto frame = frames_.Next([&](const companion::FrameInfo&) {
    when = Clock::now();
    return wanted = server_.WantsFrame();
  });
  // A free texture without a new frame answers at once.
  if (!frame) return std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ++frameNumber_;
  if (wanted) Show(*frame, when);
}

void PreviewSession::Show(const companion::FrameInfo& info, Clock::time_point when) {
  const auto picture = frames_.Pixels();
  if (!picture) return;
  Frame frame;
  frame.number = frameNumber_;
  if (const auto pose = link_.PoseOf(info.slot, when)) {
    frame.poseNumber = pose->number;
    frame.poseToFrameMs = pose->ageMs;
  }
  const auto begin = Clock::now();
  frame.jpeg = encoder_.Encode(*picture);
  frame.encodeMs = std::chrono::duration<float, std::milli>(Clock::now() - begin).count();
  if (!frame.jpeg.empty()) server_.Publish(std::move(frame));
}

}  // namespace preview
