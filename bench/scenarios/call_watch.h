#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <list>
#include <map>
#include <mutex>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace bench::scenarios {

// How long a call into the driver may wait, as the driver's headers state it. Time that the processor, Direct3D or the
// machine's other work takes comes on top: see CallWatch::LimitMs.
struct CallBound {
  const char* call;
  double waitsMs;
  bool usesGraphics = false;  // makes devices or textures
};

[[nodiscard]] std::span<const CallBound> CallBounds();

// Times every call into the driver and notes those that take longer than they may, also while they still run: a thread
// of its own looks at them. A call that is far beyond its limit will not come back: then the program ends with
// kHangExitCode, after saying which call it was. Any thread.
class CallWatch {
 public:
  static constexpr int kHangExitCode = 3;

  CallWatch();

  // `call` is a name of CallBounds; throws std::logic_error for another one.
  template <typename Body>
  auto Timed(const char* call, Body&& body) {
    const Timing timing(*this, call);
    return body();
  }

  // What was noted since the last time this was called, one line a call.
  [[nodiscard]] std::vector<std::string> TakeLateCalls();
  // call, bound, worst seen, how often.
  void PrintTable() const;
  // The same as lines "call,bound ms,limit ms,worst ms,calls", appended. False when the file cannot be written.
  [[nodiscard]] bool AppendCsv(const std::string& file) const;

  [[nodiscard]] static double LimitMs(const CallBound& bound);

 private:
  struct Running {
    const CallBound* bound;
    std::int64_t beginTicks;
    bool isLate = false;
  };
  struct Seen {
    double worstMs = 0;
    std::size_t calls = 0;
  };
  class Timing {
   public:
    Timing(CallWatch& watch, const char* call) : watch_(watch), running_(watch.Begin(call)) {}
    ~Timing() { watch_.End(running_); }
    Timing(const Timing&) = delete;
    Timing& operator=(const Timing&) = delete;

   private:
    CallWatch& watch_;
    std::list<Running>::iterator running_;
  };

  [[nodiscard]] std::list<Running>::iterator Begin(const char* call);
  void End(std::list<Running>::iterator running);
  void Look(const std::stop_token& end);
  void LookAt(Running& running);

  mutable std::mutex mutex_;
  std::condition_variable_any ended_;
  std::list<Running> running_;
  std::map<std::string, Seen> seen_;
  std::vector<std::string> lateCalls_;
  std::jthread thread_;
};

}  // namespace bench::scenarios
