#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/thread.h"

namespace ombrel {
namespace {

struct NativeThread {
  std::promise<void> promise;
  std::future<void> ended = promise.get_future();
  std::thread thread;
};

}  // namespace

bool Thread::Start(std::function<void()> body) {
  Join();
  auto native = std::make_unique<NativeThread>();
  try {
    native->thread = std::thread([body = std::move(body), promise = &native->promise] {
      body();
      promise->set_value();
    });
  } catch (const std::system_error&) {
    return false;
  }
  native_ = native.release();
  return true;
}

bool Thread::JoinFor(std::uint32_t timeoutMs) {
  if (native_ == nullptr) return true;
  auto* native = static_cast<NativeThread*>(native_);
  if (native->ended.wait_for(std::chrono::milliseconds(timeoutMs)) != std::future_status::ready) return false;
  Join();
  return true;
}

void Thread::Join() {
  if (native_ == nullptr) return;
  const std::unique_ptr<NativeThread> native(static_cast<NativeThread*>(native_));
  native->thread.join();
  native_ = nullptr;
}

}  // namespace ombrel
