#include "recorder/recording_file.h"

#include <stdexcept>

#include "base/clock.h"

namespace bench {
checker::Nanoseconds NowNanoseconds() {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  const std::int64_t ticks = NowTicks(), frequency = TicksPerSecond();
  return ticks / frequency * kPerSecond + ticks % frequency * kPerSecond / frequency;
}

namespace {

checker::Event EventOf(checker::EventKind kind, std::uint32_t subject, std::uint32_t result) {
  checker::Event event;
  event.kind = kind;
  event.subject = subject;
  event.result = result;
  event.start = event.end = NowNanoseconds();
  return event;
}

}  // namespace

RecordingFile::RecordingFile(const std::filesystem::path& path, checker::Side side)
    : file_(CreateFileW(path.wstring().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                        FILE_ATTRIBUTE_NORMAL, nullptr)) {
  if (!file_) throw std::runtime_error("cannot write " + path.string());
  Write(checker::EncodeHeader(side, GetCurrentProcessId()));
}

void RecordingFile::Add(const checker::Event& event) const {
  const DWORD error = GetLastError();
  {
    const std::lock_guard lock(mutex_);
    Write(checker::EncodeEvent(event));
  }
  SetLastError(error);
}

void RecordingFile::Add(checker::EventKind kind, std::uint32_t subject, std::uint32_t result) const {
  Add(EventOf(kind, subject, result));
}

void RecordingFile::AddLast(checker::EventKind kind, std::uint32_t result) const {
  const std::unique_lock lock(mutex_, std::try_to_lock);
  Write(checker::EncodeEvent(EventOf(kind, 0, result)));
}

void RecordingFile::Write(const checker::Bytes& bytes) const {
  DWORD written = 0;
  WriteFile(file_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace bench
