// The bodies of platform/'s headers in the world of one thread. Linked as objects, ahead of the library that holds the
// real ones, they are the ones that the driver gets.
#include "one_thread/world.h"
#include "platform/clock.h"
#include "platform/owned_handle.h"
#include "platform/pipe.h"
#include "platform/process.h"
#include "platform/sync.h"
#include "platform/thread.h"
#include "platform/worker.h"

namespace ombrel {

using test::GiveUp;
using test::TheWorld;

// Every look at the clock takes a tenth of a millisecond, so that whoever waits by looking comes to an end.
std::int64_t PerformanceCounter() { return TheWorld().now += 1000; }
std::int64_t PerformanceFrequency() { return 10'000'000; }
std::uint32_t TickMilliseconds() { return static_cast<std::uint32_t>(TheWorld().now / 10'000); }
void SleepMs(std::uint32_t milliseconds) { TheWorld().Sleep(milliseconds); }
void SleepBelowMs(double milliseconds) { TheWorld().now += static_cast<std::int64_t>(milliseconds * 10'000.0); }
void RaiseTimerResolution() {}

std::uint32_t CurrentProcessId() { return 4660; }
std::vector<ProcessEntry> ListProcesses() {
  return {{0, "[System Process]"}, {8, "Ombrel.exe"}, {12, "vrmonitor.exe"}, {16, "vrserver.exe"}};
}
std::string OwnExecutablePath() { return R"(C:\runtime\vrserver.exe)"; }
void TerminateOwnProcess() { GiveUp("the driver ended its own process"); }
void TerminateProcessById(std::uint32_t id) {
  if (id != 12) GiveUp("the driver ended a process that it should not have");
  ++TheWorld().monitorEnds;
}

// Not locked: null.
Mutex::Mutex() = default;
Mutex::~Mutex() = default;
void Mutex::lock() {
  if (!try_lock()) GiveUp("a lock is waited for that its own thread holds");
}
void Mutex::unlock() { native_ = nullptr; }
bool Mutex::try_lock() {
  if (native_ != nullptr) return false;
  native_ = this;
  return true;
}

Condition::Condition() = default;
Condition::~Condition() = default;
void Condition::NotifyAll() {}
void Condition::Wait(std::unique_lock<Mutex>& /*lock*/) { GiveUp("a wait that nobody can end"); }
bool Condition::WaitFor(std::unique_lock<Mutex>& /*lock*/, std::uint32_t timeoutMs) {
  TheWorld().Sleep(timeoutMs);
  return false;
}

void WakeSignal::WakeAll() { ++generation_; }
bool WakeSignal::WaitFor(std::uint32_t seen, std::uint32_t timeoutMs) const {
  if (Generation() == seen) TheWorld().RunThreads();
  if (Generation() == seen) TheWorld().Sleep(timeoutMs);
  return Generation() != seen;
}

struct Thread::Native {};
Thread::Thread() = default;
Thread::~Thread() { Join(); }
bool Thread::Start(std::function<void()> body) {
  Join();
  TheWorld().Start(this, std::move(body));
  native_ = std::make_unique<Native>();
  return true;
}
bool Thread::JoinFor(std::uint32_t /*timeoutMs*/) {
  Join();
  return true;
}
void Thread::Join() {
  if (!native_) return;
  native_.reset();
  TheWorld().Join(this);
}

// Works at once, on whatever thread tells it to.
bool Worker::Start(std::function<void()> work) {
  work_ = std::move(work);
  return true;
}
void Worker::Notify() {
  if (work_) work_();
}
bool Worker::StopFor(std::uint32_t /*timeoutMs*/) {
  work_ = nullptr;
  return true;
}

namespace {

// In place of descriptors.
constexpr NativeHandle kReading = 1, kWriting = 2;

}  // namespace

OwnedHandle::OwnedHandle(NativeHandle native) : native_(native) {}
void OwnedHandle::Reset() {
  if (std::exchange(native_, kNoHandle) == kReading) TheWorld().EndConnection();
}

bool PipeClient::Open(const char* /*name*/, Direction direction) {
  Close();
  if (direction == Direction::kWrite && !TheWorld().OpenNext()) return false;
  handle_ = OwnedHandle(direction == Direction::kWrite ? kWriting : kReading);
  return true;
}
bool PipeClient::IsPeerGone() const { return TheWorld().IsOver(); }
bool PipeClient::ReadSome(void* buffer, std::size_t capacity, std::size_t& got) {
  if (handle_.Get() != kReading) GiveUp("a read from no pipe");
  return TheWorld().Read({static_cast<std::byte*>(buffer), capacity}, got);
}
bool PipeClient::WriteAll(const void* bytes, std::size_t size) {
  if (handle_.Get() != kWriting) GiveUp("a write to no pipe");
  TheWorld().Write({static_cast<const std::byte*>(bytes), size});
  return true;
}
void PipeClient::CancelIo() {}

}  // namespace ombrel
