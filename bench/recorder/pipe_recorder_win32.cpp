#include "recorder/pipe_recorder.h"

#include <ombrel/protocol.h>

#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>

#include "drain_watch.h"
#include "sharing/import_patch.h"

namespace bench {

using checker::Event;
using checker::EventKind;
using checker::Pipe;

class PipeRecorder::State {
 public:
  explicit State(const RecordingFile& file) : file_(file), drain_(file) {}

  void Opened(Pipe pipe, HANDLE handle, Event event);
  void Closing(HANDLE handle);
  void Transferred(EventKind kind, HANDLE handle, const void* bytes, DWORD count, Event event);
  [[nodiscard]] std::string BlockName() const;

 private:
  [[nodiscard]] Pipe PipeOf(HANDLE handle) const;
  void LookForBlockName(const void* bytes, DWORD count);

  const RecordingFile& file_;
  DrainWatch drain_;
  mutable std::mutex mutex_;
  std::map<HANDLE, Pipe> pipes_;
  std::string blockName_;
};

namespace {

PipeRecorder::State* current = nullptr;

Pipe PipeNamed(const char* name) {
  if (std::strcmp(name, OMBREL_PIPE_FROM_DRIVER) == 0) return Pipe::kIn;
  return std::strcmp(name, OMBREL_PIPE_TO_DRIVER) == 0 ? Pipe::kOut : Pipe::kNone;
}

// A call that has just ended.
Event Ended(checker::Nanoseconds start, bool succeeded) {
  Event event;
  event.result = succeeded ? 0 : GetLastError();
  event.start = start;
  event.end = NowNanoseconds();
  return event;
}

HANDLE WINAPI RecordedCreateFile(const char* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD how,
                                 DWORD flags, HANDLE pattern) {
  const auto start = NowNanoseconds();
  const HANDLE handle = CreateFileA(name, access, share, security, how, flags, pattern);
  const Pipe pipe = PipeNamed(name);
  if (pipe != Pipe::kNone) current->Opened(pipe, handle, Ended(start, handle != INVALID_HANDLE_VALUE));
  return handle;
}

BOOL WINAPI RecordedReadFile(HANDLE handle, void* bytes, DWORD count, DWORD* got, OVERLAPPED* overlapped) {
  const auto start = NowNanoseconds();
  const BOOL succeeded = ReadFile(handle, bytes, count, got, overlapped);
  current->Transferred(EventKind::kPipeRead, handle, bytes, *got, Ended(start, succeeded != 0));
  return succeeded;
}

BOOL WINAPI RecordedWriteFile(HANDLE handle, const void* bytes, DWORD count, DWORD* written, OVERLAPPED* overlapped) {
  const auto start = NowNanoseconds();
  const BOOL succeeded = WriteFile(handle, bytes, count, written, overlapped);
  current->Transferred(EventKind::kPipeWritten, handle, bytes, *written, Ended(start, succeeded != 0));
  return succeeded;
}

BOOL WINAPI RecordedCloseHandle(HANDLE handle) {
  current->Closing(handle);
  return CloseHandle(handle);
}

template <class Function>
void Replace(HMODULE driver, const char* name, Function* function) {
  if (!ReplaceImport(driver, nullptr, name, reinterpret_cast<void*>(function))) {
    throw std::runtime_error(std::string("the driver does not import ") + name + ", so its pipes cannot be watched");
  }
}

}  // namespace

Pipe PipeRecorder::State::PipeOf(HANDLE handle) const {
  const std::lock_guard lock(mutex_);
  const auto found = pipes_.find(handle);
  return found == pipes_.end() ? Pipe::kNone : found->second;
}

void PipeRecorder::State::Opened(Pipe pipe, HANDLE handle, Event event) {
  event.kind = EventKind::kPipeOpened;
  event.pipe = pipe;
  file_.Add(event);
  if (event.result != 0) return;
  if (pipe == Pipe::kIn) drain_.Open(handle);
  const std::lock_guard lock(mutex_);
  pipes_[handle] = pipe;
}

void PipeRecorder::State::Closing(HANDLE handle) {
  const Pipe pipe = PipeOf(handle);
  if (pipe == Pipe::kNone) return;
  if (pipe == Pipe::kIn) drain_.Close();
  Event event;
  event.kind = EventKind::kPipeClosed;
  event.pipe = pipe;
  event.start = event.end = NowNanoseconds();
  file_.Add(event);
  const std::lock_guard lock(mutex_);
  pipes_.erase(handle);
}

void PipeRecorder::State::Transferred(EventKind kind, HANDLE handle, const void* bytes, DWORD count, Event event) {
  const DWORD error = GetLastError();
  event.kind = kind;
  event.pipe = PipeOf(handle);
  if (event.pipe != Pipe::kNone) {
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    event.bytes.assign(first, first + count);
    file_.Add(event);
    if (kind == EventKind::kPipeWritten) {
      drain_.Written(count);
      LookForBlockName(bytes, count);
    }
  }
  SetLastError(error);
}

// The payload of FrameSharingInfo is written in one piece, and is longer than any other of the driver.
void PipeRecorder::State::LookForBlockName(const void* bytes, DWORD count) {
  OmbrelFrameSharingInfo info{};
  if (count != sizeof(info)) return;
  std::memcpy(&info, bytes, sizeof(info));
  const std::lock_guard lock(mutex_);
  blockName_.assign(info.name, strnlen(info.name, sizeof(info.name)));
}

std::string PipeRecorder::State::BlockName() const {
  const std::lock_guard lock(mutex_);
  return blockName_;
}

PipeRecorder::PipeRecorder(HMODULE driver, const RecordingFile& file) : state_(std::make_unique<State>(file)) {
  current = state_.get();
  Replace(driver, "CreateFileA", &RecordedCreateFile);
  Replace(driver, "ReadFile", &RecordedReadFile);
  Replace(driver, "WriteFile", &RecordedWriteFile);
  Replace(driver, "CloseHandle", &RecordedCloseHandle);
}

PipeRecorder::~PipeRecorder() = default;

std::string PipeRecorder::BlockName() const { return state_->BlockName(); }

}  // namespace bench
