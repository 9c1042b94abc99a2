#include "script_runner.h"

#include <map>
#include <numbers>
#include <stdexcept>
#include <string>

#include "controller_step.h"
#include "motion/controller_tour.h"
#include "motion/head_motion.h"

namespace bench {

using namespace companion;

namespace {

constexpr double kDefaultTimeoutSeconds = 30;
constexpr double kTurnSeconds = 0.5;
constexpr double kSweepSeconds = 16, kSweepYawDegrees = 60, kSweepPitchDegrees = 40;

float Radians(double degrees) { return static_cast<float>(degrees * std::numbers::pi / 180); }

WantedPicture ParsePicture(const nlohmann::json& step) {
  WantedPicture wanted{.name = step.at("label")};
  if (!step.contains("rgba")) return wanted;
  wanted.rgba = step.at("rgba").get<Rgba>();
  wanted.region =
      Box{step.at("x").get<int>(), step.at("y").get<int>(), step.value("width", 1), step.value("height", 1)};
  wanted.tolerance = step.value("tolerance", 0);
  return wanted;
}

}  // namespace

ScriptRunner::ScriptRunner(const Options& options, DriverLink& link, RunState& run)
    : options_(options), link_(link), run_(run) {}

ScriptRunner::~ScriptRunner() {
  run_.End();
  if (thread_.joinable()) thread_.join();
}

void ScriptRunner::Start(Script script) {
  thread_ = std::thread([this, steps = std::move(script.steps)] {
    PlayAll(steps);
    done_ = true;
  });
}

void ScriptRunner::PlayAll(const std::vector<Step>& steps) {
  try {
    for (const Step& step : steps) Play(step);
  } catch (const RunEnded&) {
  } catch (const std::exception& error) {
    run_.Fail(std::string("script: ") + error.what());
  }
}

void ScriptRunner::Play(const Step& step) {
  using Verb = void (ScriptRunner::*)(const Step&);
  static const std::map<std::string, Verb> verbs = {
      {"sleep", &ScriptRunner::Sleep},           {"wait", &ScriptRunner::Wait},
      {"motion", &ScriptRunner::Motion},         {"look", &ScriptRunner::Look},
      {"controller", &ScriptRunner::Controller}, {"controllers", &ScriptRunner::Controllers},
      {"picture", &ScriptRunner::Picture},       {"expect-haptic", &ScriptRunner::ExpectHaptic},
      {"together", &ScriptRunner::Together},     {"repeat", &ScriptRunner::Repeat},
  };
  if (run_.Ended()) throw RunEnded();
  (this->*verbs.at(step.at("do").get<std::string>()))(step);
}

template <typename Tick>
void ScriptRunner::AtRate(double rate, double seconds, Tick tick) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  for (std::uint64_t i = 0;; ++i) {
    const double at = static_cast<double>(i) / rate;
    run_.SleepUntil(start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(at)));
    if (seconds > 0 && at > seconds) return;
    tick(at);
  }
}

template <typename Condition>
bool ScriptRunner::WaitFor(double timeoutSeconds, Condition condition, double pollSeconds) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(timeoutSeconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= until) return false;
    run_.Sleep(pollSeconds);
  }
  return true;
}

template <typename Meanwhile>
void ScriptRunner::AwaitPicture(const Step& step, Meanwhile meanwhile, double pollSeconds) {
  const WantedPicture wanted = ParsePicture(step);
  PictureRequest& request = run_.PictureWanted();
  request.Ask(wanted);
  const auto taken = [&] {
    meanwhile();
    return !request.Open();
  };
  if (WaitFor(step.value("timeout", kDefaultTimeoutSeconds), taken, pollSeconds)) return;
  throw std::runtime_error("no picture \"" + wanted.name + "\": " + request.Withdraw());
}

void ScriptRunner::Sleep(const Step& step) { run_.Sleep(step.at("seconds").get<double>()); }

void ScriptRunner::Wait(const Step& step) {
  const double timeout = step.value("timeout", kDefaultTimeoutSeconds);
  const auto what = step.at("for").get<std::string>();
  bool came = false;
  if (what == "connection") {
    // Each wait is for a connection that no wait before it has seen.
    came = WaitFor(timeout,
                   [&] { return link_.Pipes().Connected() && link_.Pipes().Connections() > connectionsWaitedFor_; });
    connectionsWaitedFor_ = link_.Pipes().Connections();
  } else if (what == "frames") {
    const std::uint64_t wanted = run_.Frames() + step.value("count", std::uint64_t{1});
    came = WaitFor(timeout, [&] { return run_.Frames() >= wanted; });
  } else {
    throw std::runtime_error("wait knows no \"" + what + '"');
  }
  if (!came) throw std::runtime_error("waited " + std::to_string(timeout) + " s for " + what + " in vain");
}

void ScriptRunner::Motion(const Step& step) {
  const auto kind = step.value("kind", std::string("sweep"));
  const auto format = static_cast<PoseFormat>(step.value("format", options_.poseFormat));
  const float yaw = Radians(step.value("yaw", kind == "hold" ? 0.0 : kSweepYawDegrees));
  const float pitch = Radians(step.value("pitch", kind == "hold" ? 0.0 : kSweepPitchDegrees));
  const double seconds = step.value("seconds", kSweepSeconds);
  if (kind != "sweep" && kind != "hold") throw std::runtime_error("motion knows no \"" + kind + '"');
  const HeadMotion motion = kind == "hold" ? HoldMotion(seconds, {yaw, pitch}) : SweepMotion(seconds, yaw, pitch);
  AtRate(step.value("rate", options_.poseRate), seconds, [&](double at) { link_.SendHead(format, motion.At(at)); });
}

void ScriptRunner::Look(const Step& step) {
  const auto format = static_cast<PoseFormat>(step.value("format", options_.poseFormat));
  const double rate = step.value("rate", options_.poseRate), seconds = step.value("seconds", kTurnSeconds);
  const YawPitch direction{Radians(step.value("yaw", 0.0)), Radians(step.value("pitch", 0.0))};
  const HeadMotion turn(LookDirection(link_.PublishedPose()), {{seconds, direction}});
  AtRate(rate, seconds, [&](double at) { link_.SendHead(format, turn.At(at)); });
  // A virtual display shows no frame without a new pose.
  AwaitPicture(
      step, [&] { link_.SendHead(format, direction); }, 1 / rate);
}

void ScriptRunner::Controller(const Step& step) { link_.Send(EncodeControllerUpdate(ParseController(step))); }

void ScriptRunner::Controllers(const Step& step) {
  const auto ids = step.value("ids", std::vector<std::uint32_t>{1, 2});
  std::uint32_t packet = 0;
  AtRate(step.value("rate", 60.0), step.value("seconds", kControllerTourSeconds), [&](double at) {
    ++packet;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      ControllerRecord record = ControllerTour(ids[i], i % 2 == 0 ? -1.0F : 1.0F, at);
      record.packetNumber = packet;
      link_.Send(EncodeControllerUpdate(record));
    }
  });
}

void ScriptRunner::ExpectHaptic(const Step& step) {
  const auto controller = step.at("controller").get<std::uint32_t>();
  const auto duration = step.at("durationMicroseconds").get<std::uint16_t>();
  const bool came =
      WaitFor(step.value("timeout", kDefaultTimeoutSeconds), [&] { return run_.TakeHaptic(controller, duration); });
  if (!came) {
    throw std::runtime_error("no haptic pulse of " + std::to_string(duration) + " us for controller " +
                             std::to_string(controller));
  }
}

void ScriptRunner::Picture(const Step& step) {
  AwaitPicture(step, [] {});
}

void ScriptRunner::Together(const Step& step) {
  std::vector<std::thread> threads;
  for (const Step& track : step.at("tracks")) {
    threads.emplace_back([this, steps = track.get<std::vector<Step>>()] { PlayAll(steps); });
  }
  for (std::thread& thread : threads) thread.join();
}

void ScriptRunner::Repeat(const Step& step) {
  const auto steps = step.at("steps").get<std::vector<Step>>();
  const int times = step.value("times", 0);
  for (int i = 0; times == 0 || i < times; ++i) {
    for (const Step& inner : steps) Play(inner);
  }
}

}  // namespace bench
