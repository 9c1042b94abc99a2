#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace bench {

// The runtime's server thread: runs what it is given one at a time, and in between a tick at a rate.
// Run and SetTick may be called from any other thread.
class ServerThread {
 public:
  ServerThread();
  ServerThread(const ServerThread&) = delete;
  ServerThread& operator=(const ServerThread&) = delete;
  // Ends the thread after the task or tick that is under way.
  ~ServerThread();

  // Runs `task` on the thread and waits for its end; throws what the task threw.
  void Run(const std::function<void()>& task);
  // From now on calls `tick` at `hertz`; 0 stops it, and no tick runs any more when this returns.
  // A tick that comes late is not made up for. It must not throw.
  void SetTick(std::function<void()> tick, double hertz);
  [[nodiscard]] std::uint32_t ThreadId() const { return threadId_; }

 private:
  void Loop();
  // The time of the next tick; nothing while there is none.
  [[nodiscard]] std::optional<std::int64_t> NextTickTicks() const;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> task_;
  std::function<void()> tick_;
  std::int64_t periodTicks_ = 0;
  std::int64_t lastTickTicks_ = 0;
  bool stopping_ = false;
  std::mutex callers_;  // held by Run, so that one task is handed over at a time
  std::uint32_t threadId_ = 0;
  std::thread thread_;
};

}  // namespace bench
