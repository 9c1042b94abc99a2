#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "support/wait.h"

namespace ombrel::test {

// A call on a thread of its own, which can be waited for with a bound. Joined when it goes.
class Background {
 public:
  explicit Background(std::function<void()> body)
      : thread_([this, body = std::move(body)] {
          body();
          const std::lock_guard guard(mutex_);
          done_ = true;
          changed_.notify_all();
        }) {}
  ~Background() { thread_.join(); }
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  [[nodiscard]] bool IsDoneWithin(std::chrono::milliseconds bound) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, bound, [this] { return done_; });
  }
  [[nodiscard]] bool Finishes() { return IsDoneWithin(kPatience); }
  // To show that a call blocks: no proof that it always will, but a call that does not block fails it.
  [[nodiscard]] bool StaysBlocked() { return !IsDoneWithin(std::chrono::milliseconds(60)); }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
  std::thread thread_;  // last: it uses the others
};

// Holds up threads that come to it until it is opened.
class Barrier {
 public:
  void Pass() {
    std::unique_lock lock(mutex_);
    ++waiting_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
  }
  void Open() {
    const std::lock_guard guard(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  // Whether somebody comes to it.
  [[nodiscard]] bool WaitForVisitor() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this] { return waiting_ > 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int waiting_ = 0;
  bool open_ = false;
};

}  // namespace ombrel::test
