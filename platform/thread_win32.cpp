#include <windows.h>

#include <type_traits>
#include <utility>

#include "platform/owned_handle.h"
#include "platform/thread.h"

namespace ombrel {

struct Thread::Native {
  OwnedHandle handle;
};

namespace {

struct Unload {
  void operator()(HMODULE library) const { FreeLibrary(library); }
};
using LibraryReference = std::unique_ptr<std::remove_pointer_t<HMODULE>, Unload>;

// What a thread runs, and a reference to the DLL that this code is in: a DLL that is unloaded without having been
// stopped goes when its last thread has ended (FreeLibraryAndExitThread), not from under it.
struct Work {
  std::function<void()> body;
  LibraryReference library;
};

DWORD WINAPI RunWork(void* parameter) {
  std::unique_ptr<Work> work(static_cast<Work*>(parameter));
  work->body();
  const HMODULE library = work->library.release();
  work.reset();
  if (library != nullptr) FreeLibraryAndExitThread(library, 0);
  return 0;
}

LibraryReference HoldThisLibrary() {
  HMODULE library = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&RunWork), &library);
  return LibraryReference(library);
}

}  // namespace

Thread::Thread() = default;
Thread::~Thread() { Join(); }

bool Thread::Start(std::function<void()> body) {
  Join();
  auto native = std::make_unique<Native>();
  auto work = std::make_unique<Work>(Work{std::move(body), HoldThisLibrary()});
  native->handle = OwnedHandle(CreateThread(nullptr, 0, &RunWork, work.get(), 0, nullptr));
  if (!native->handle) return false;
  static_cast<void>(work.release());  // the new thread owns it now
  native_ = std::move(native);
  return true;
}

bool Thread::JoinFor(std::uint32_t timeoutMs) {
  if (!native_) return true;
  if (WaitForSingleObject(native_->handle.Get(), timeoutMs) != WAIT_OBJECT_0) return false;
  native_.reset();
  return true;
}

void Thread::Join() { JoinFor(INFINITE); }

}  // namespace ombrel
