#include "session.h"

#include <cstdio>
#include <thread>

#include "base/percentile.h"

namespace bench {

using namespace companion;

namespace {

// A connection that ended may have left a frame to read; after so long without one, it has not.
constexpr auto kLastFrameWait = std::chrono::milliseconds(500);
constexpr auto kLineInterval = std::chrono::seconds(1);
constexpr const char* kEndlessSweep =
    R"({"steps": [{"do": "wait", "for": "connection", "timeout": 1e9},
                  {"do": "repeat", "steps": [{"do": "motion"}]}]})";

double Seconds(std::chrono::steady_clock::duration span) { return std::chrono::duration<double>(span).count(); }

}  // namespace

Session::Session(const Options& options, Microsoft::WRL::ComPtr<ID3D11Device> device)
    : options_(options),
      script_(options.script.empty() ? ParseScript(kEndlessSweep) : LoadScript(options.script)),
      link_(options.posesCsv),
      frames_(options, link_, run_, std::move(device)),
      runner_(options, link_, run_) {
  if (!options.out.empty()) std::filesystem::create_directories(options.out);
}

int Session::Run() {
  if (!link_.Pipes().Open()) throw std::runtime_error("the pipes cannot be made: is another companion running?");
  std::printf("companion: pipes open\n");
  std::fflush(stdout);
  start_ = lastLine_ = Clock::now();
  runner_.Start(std::move(script_));
  Loop();
  const Outcome outcome = End();
  for (const std::string& failure : outcome.failures) std::fprintf(stderr, "companion: %s\n", failure.c_str());
  std::printf("%s\n", SummaryLine(outcome).c_str());
  if (outcome.connections == 0) return 3;
  return outcome.failures.empty() ? 0 : 1;
}

void Session::Loop() {
  while (!Finished()) {
    NoticeConnection();
    TakeMessages(frames_.Open() ? 0 : 10);
    const bool gotFrame = frames_.TakeOne();
    NoticeSilence(gotFrame);
    // A free texture without a new frame answers at once.
    if (!gotFrame && frames_.Open()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (Clock::now() - lastLine_ >= kLineInterval) PrintLive();
  }
}

void Session::NoticeConnection() {
  const std::uint32_t connections = link_.Pipes().Connections();
  if (connections == connectionsSeen_) return;
  if (connectionsSeen_ == 0) firstConnection_ = Clock::now();
  connectionsSeen_ = connections;
  if (options_.framerate) link_.Send(EncodeFramerateUpdate(*options_.framerate));
}

void Session::TakeMessages(std::uint32_t timeoutMs) {
  while (const auto received = link_.Pipes().Next(timeoutMs)) {
    Take(*received);
    timeoutMs = 0;
  }
}

void Session::Take(const ReceivedMessage& received) {
  if (received.message.Is(MessageType::FrameSharingInfo)) {
    const auto info = DecodeFrameSharingInfo(received.message.payload);
    if (!info) return run_.Fail("a FrameSharingInfo that is not as the protocol says");
    lastFrame_ = Clock::now();
    return frames_.Announce(received.connection, *info);
  }
  if (received.message.Is(MessageType::HapticPulse)) {
    const auto pulse = DecodeHapticPulse(received.message.payload);
    if (!pulse) return run_.Fail("a HapticPulse that is not as the protocol says");
    return run_.AddHaptic(*pulse);
  }
  run_.Fail("a message of type " + std::to_string(received.message.type) + ", which drivers do not send");
}

void Session::NoticeSilence(bool gotFrame) {
  const auto now = Clock::now();
  if (gotFrame) lastFrame_ = now;
  if (frames_.Open() && !link_.Pipes().Connected() && now - lastFrame_ > kLastFrameWait) frames_.Close();
}

double Session::SecondsConnected() const {
  return connectionsSeen_ == 0 ? 0 : Seconds(Clock::now() - firstConnection_);
}

bool Session::Finished() const {
  if (!run_.Failures().empty()) return true;
  if (connectionsSeen_ == 0 && Seconds(Clock::now() - start_) > options_.connectTimeoutSeconds) return true;
  if (options_.frames != 0 && frames_.Log().Frames() >= options_.frames) return true;
  if (options_.seconds > 0 && SecondsConnected() >= options_.seconds) return true;
  const bool driverGone = connectionsSeen_ != 0 && !link_.Pipes().Connected() && !frames_.Open();
  if (options_.untilDisconnect) return driverGone;
  if (options_.frames != 0 || options_.seconds > 0) return false;
  return !options_.script.empty() && runner_.Done();
}

void Session::PrintLive() {
  const auto now = Clock::now();
  const double span = Seconds(now - lastLine_);
  const std::uint64_t poses = link_.PosesSent(), frames = frames_.Log().Frames();
  std::printf("companion: %6.1f s  %s  poses %llu (%.1f/s)  frames %llu (%.1f/s)  matching %llu  mismatching %llu\n",
              SecondsConnected(), link_.Pipes().Connected() ? "connected" : "waiting",
              static_cast<unsigned long long>(poses), static_cast<double>(poses - posesAtLine_) / span,
              static_cast<unsigned long long>(frames), static_cast<double>(frames - framesAtLine_) / span,
              static_cast<unsigned long long>(frames_.Log().Matching()),
              static_cast<unsigned long long>(frames_.Log().Mismatching()));
  std::fflush(stdout);
  lastLine_ = now;
  posesAtLine_ = poses;
  framesAtLine_ = frames;
}

Outcome Session::End() {
  NoticeConnection();
  TakeMessages(0);
  Outcome outcome;
  outcome.seconds = SecondsConnected();
  run_.End();
  link_.Pipes().Close();
  frames_.Close();
  frames_.Finish();
  const FrameLog& log = frames_.Log();
  outcome.connections = connectionsSeen_;
  outcome.poses = link_.PosesSent();
  outcome.frames = log.Frames();
  if (log.Frames() > 1) {
    outcome.framesPerSecond = static_cast<double>(log.Frames() - 1) / log.SecondsBetweenFirstAndLast();
  }
  outcome.matching = log.Matching();
  outcome.mismatching = log.Mismatching();
  outcome.unknown = log.Unknown();
  outcome.withoutPose = log.WithoutPose();
  outcome.poseAgeMedianMs = Percentile(log.PoseAgesMs(), 0.5);
  outcome.poseAgeP99Ms = Percentile(log.PoseAgesMs(), 0.99);
  outcome.haptics = run_.HapticsReceived();
  outcome.named = frames_.NamedPictures();
  outcome.pictures = frames_.SavedPictures();
  outcome.skippedPictures = frames_.SkippedPictures();
  outcome.failures = run_.Failures();
  if (outcome.connections == 0) outcome.failures.push_back("no driver came");
  CheckRequirements(options_, outcome);
  if (!options_.summary.empty()) WriteSummary(options_, outcome);
  return outcome;
}

}  // namespace bench
