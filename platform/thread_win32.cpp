#include <windows.h>

#include <memory>
#include <utility>

#include "platform/thread.h"

namespace ombrel {
namespace {

DWORD WINAPI RunBody(void* parameter) {
  const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(parameter));
  (*body)();
  return 0;
}

}  // namespace

bool Thread::Start(std::function<void()> body) {
  Join();
  auto owned = std::make_unique<std::function<void()>>(std::move(body));
  native_ = CreateThread(nullptr, 0, &RunBody, owned.get(), 0, nullptr);
  if (native_ == nullptr) return false;
  static_cast<void>(owned.release());  // the new thread owns it now
  return true;
}

bool Thread::JoinFor(std::uint32_t timeoutMs) {
  if (native_ == nullptr) return true;
  if (WaitForSingleObject(native_, timeoutMs) != WAIT_OBJECT_0) return false;
  CloseHandle(native_);
  native_ = nullptr;
  return true;
}

void Thread::Join() { JoinFor(INFINITE); }

}  // namespace ombrel
