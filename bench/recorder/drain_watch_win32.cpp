#include "drain_watch.h"

#include <chrono>

namespace bench {
namespace {

using namespace std::chrono_literals;

bool IsWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace

DrainWatch::DrainWatch(const RecordingFile& file) : file_(file), works_(IsWine()), thread_([this] { Run(); }) {}

DrainWatch::~DrainWatch() {
  Close();
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void DrainWatch::Open(HANDLE pipe) {
  if (!works_) return;
  const HANDLE process = GetCurrentProcess();
  HANDLE copy = nullptr;
  if (!DuplicateHandle(process, pipe, process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS)) return;
  Close();
  const std::lock_guard lock(mutex_);
  pipe_ = OwnedHandle(copy);
  written_ = drained_ = 0;
  Record(0);
}

void DrainWatch::Written(std::uint64_t bytes) {
  {
    const std::lock_guard lock(mutex_);
    written_ += bytes;
  }
  changed_.notify_all();
}

void DrainWatch::Close() {
  std::unique_lock lock(mutex_);
  while (flushing_) {
    CancelIoEx(pipe_.Get(), nullptr);
    changed_.wait_for(lock, 1ms);
  }
  pipe_.Reset();
}

void DrainWatch::Run() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return stop_ || (pipe_ && written_ > drained_); });
    if (stop_) return;
    const std::uint64_t bytes = written_;
    const HANDLE pipe = pipe_.Get();
    flushing_ = true;
    lock.unlock();
    const bool drained = FlushFileBuffers(pipe) != 0;
    lock.lock();
    flushing_ = false;
    drained_ = bytes;
    if (drained) Record(bytes);
    changed_.notify_all();
  }
}

void DrainWatch::Record(std::uint64_t bytes) const {
  checker::Event event;
  event.kind = checker::EventKind::kPipeDrained;
  event.pipe = checker::Pipe::kIn;
  event.start = event.end = NowNanoseconds();
  event.key = bytes;
  file_.Add(event);
}

}  // namespace bench
