#pragma once

#include <thread>

#include "driver_link.h"
#include "options.h"
#include "run_state.h"
#include "script.h"

namespace bench {

// Plays a script's steps on a thread of its own. A step that cannot be done makes the run fail and ends the script.
class ScriptRunner {
 public:
  ScriptRunner(const Options& options, DriverLink& link, RunState& run);
  // Ends the run and waits for the script's thread. Close the pipes first: a full pipe holds a sender.
  ~ScriptRunner();
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;

  void Start(Script script);
  bool Done() const { return done_; }

 private:
  using Step = nlohmann::json;
  void PlayAll(const std::vector<Step>& steps);
  void Play(const Step& step);

  void Sleep(const Step& step);
  void Wait(const Step& step);
  void Motion(const Step& step);
  void Look(const Step& step);
  void Controller(const Step& step);
  void Controllers(const Step& step);
  void Picture(const Step& step);
  void ExpectHaptic(const Step& step);
  void Together(const Step& step);
  void Repeat(const Step& step);

  // Calls `tick` with the seconds since the start at a fixed rate, from 0 to `seconds`.
  template <typename Tick>
  void AtRate(double rate, double seconds, Tick tick);
  static constexpr double kPollSeconds = 0.002;
  // Looks at `condition` until it is true. False after `timeoutSeconds`.
  template <typename Condition>
  bool WaitFor(double timeoutSeconds, Condition condition, double pollSeconds = kPollSeconds);
  // Waits for the picture that a step describes, with a call of `meanwhile` at each poll; throws when none comes.
  template <typename Meanwhile>
  void AwaitPicture(const Step& step, Meanwhile meanwhile, double pollSeconds = kPollSeconds);

  const Options& options_;
  DriverLink& link_;
  RunState& run_;
  std::atomic<bool> done_ = false;
  std::uint32_t connectionsWaitedFor_ = 0;
  std::thread thread_;
};

}  // namespace bench
