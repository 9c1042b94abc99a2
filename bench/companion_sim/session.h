#pragma once

#include <chrono>

#include "driver_link.h"
#include "frame_taker.h"
#include "options.h"
#include "report.h"
#include "run_state.h"
#include "script_runner.h"

namespace bench {

// One run of the companion, from making the pipes to the summary. Runs on the program's main thread.
class Session {
 public:
  // Throws when a file cannot be read or written, or holds what it must not.
  Session(const Options& options, Microsoft::WRL::ComPtr<ID3D11Device> device);

  // The program's exit code: 0 all well, 1 a requirement was not met, 3 no driver came.
  int Run();

 private:
  using Clock = std::chrono::steady_clock;

  void Loop();
  void TakeMessages(std::uint32_t timeoutMs);
  void Take(const companion::ReceivedMessage& received);
  void NoticeConnection();
  void NoticeSilence(bool gotFrame);
  bool Finished() const;
  void PrintLive();
  Outcome End();
  double SecondsConnected() const;

  const Options& options_;
  RunState run_;
  Script script_;
  DriverLink link_;
  FrameTaker frames_;
  ScriptRunner runner_;

  Clock::time_point start_ = Clock::now();
  Clock::time_point firstConnection_;
  Clock::time_point lastFrame_;
  Clock::time_point lastLine_;
  std::uint32_t connectionsSeen_ = 0;
  std::uint64_t posesAtLine_ = 0;
  std::uint64_t framesAtLine_ = 0;
};

}  // namespace bench
