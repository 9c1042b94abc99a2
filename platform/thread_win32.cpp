#include <windows.h>

#include <memory>
#include <utility>

#include "platform/thread.h"

namespace ombrel {
namespace {

// What a thread runs, and the library that this code is in. The thread keeps the library loaded: one that is unloaded
// without having been stopped goes when its last thread ends, not from under it.
struct Work {
  std::function<void()> body;
  HMODULE library = nullptr;
};

DWORD WINAPI RunWork(void* parameter) {
  std::unique_ptr<Work> work(static_cast<Work*>(parameter));
  work->body();
  const HMODULE library = work->library;
  work.reset();
  if (library != nullptr) FreeLibraryAndExitThread(library, 0);
  return 0;
}

HMODULE HoldThisLibrary() {
  HMODULE library = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&RunWork), &library);
  return library;
}

}  // namespace

bool Thread::Start(std::function<void()> body) {
  Join();
  auto work = std::make_unique<Work>(Work{std::move(body)});
  work->library = HoldThisLibrary();  // not before there is memory: nobody would let go of it
  native_ = CreateThread(nullptr, 0, &RunWork, work.get(), 0, nullptr);
  if (native_ == nullptr) {
    if (work->library != nullptr) FreeLibrary(work->library);
    return false;
  }
  static_cast<void>(work.release());  // the new thread owns it now
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
