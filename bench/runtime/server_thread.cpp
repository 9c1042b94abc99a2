#include "runtime/server_thread.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <future>
#include <utility>

#include "base/clock.h"
#include "runtime/thread_id.h"

namespace bench {

ServerThread::ServerThread() {
  std::promise<std::uint32_t> started;
  thread_ = std::thread([this, &started] {
    started.set_value(runtime::ThreadId());
    Loop();
  });
  threadId_ = started.get_future().get();
}

ServerThread::~ServerThread() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void ServerThread::Run(const std::function<void()>& task) {
  const std::lock_guard onlyCaller(callers_);
  std::promise<void> done;
  {
    const std::lock_guard lock(mutex_);
    task_ = [&task, &done] {
      try {
        task();
        done.set_value();
      } catch (...) {
        done.set_exception(std::current_exception());
      }
    };
  }
  changed_.notify_all();
  done.get_future().get();
}

void ServerThread::SetTick(std::function<void()> tick, double hertz) {
  Run([&] {
    const std::lock_guard lock(mutex_);
    tick_ = hertz > 0 ? std::move(tick) : nullptr;
    periodTicks_ = hertz > 0 ? SecondsToTicks(1.0 / hertz) : 0;
    lastTickTicks_ = NowTicks() - periodTicks_;
  });
}

std::optional<std::int64_t> ServerThread::NextTickTicks() const {
  return tick_ ? std::optional(lastTickTicks_ + periodTicks_) : std::nullopt;
}

void ServerThread::Loop() {
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    if (task_) {
      const auto task = std::exchange(task_, nullptr);
      lock.unlock();
      task();
      lock.lock();
      continue;
    }
    const auto next = NextTickTicks();
    if (!next) {
      changed_.wait(lock);
      continue;
    }
    const std::int64_t now = NowTicks();
    if (now < *next) {
      changed_.wait_for(lock, std::chrono::duration<double>(TicksToSeconds(*next - now)));
      continue;
    }
    // Fixed rate while on time. A late tick shifts the phase, so that no burst catches up.
    lastTickTicks_ = now - *next < periodTicks_ ? *next : now;
    const auto tick = tick_;
    lock.unlock();
    tick();
    lock.lock();
  }
}

}  // namespace bench
