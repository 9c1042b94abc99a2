#include <chrono>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/thread.h"

namespace ombrel {

struct Thread::Native {
  std::promise<void> promise;
  std::future<void> ended = promise.get_future();
  std::thread thread;
};

Thread::Thread() = default;
Thread::~Thread() { Join(); }

bool Thread::Start(std::function<void()> body) {
  Join();
  auto native = std::make_unique<Native>();
  try {
    native->thread = std::thread([body = std::move(body), promise = &native->promise] {
      body();
      promise->set_value();
    });
  } catch (const std::system_error&) {
    return false;
  }
  native_ = std::move(native);
  return true;
}

bool Thread::JoinFor(std::uint32_t timeoutMs) {
  if (!native_) return true;
  if (native_->ended.wait_for(std::chrono::milliseconds(timeoutMs)) != std::future_status::ready) return false;
  Join();
  return true;
}

void Thread::Join() {
  if (!native_) return;
  native_->thread.join();
  native_.reset();
}

}  // namespace ombrel
