#pragma once

#include <filesystem>
#include <mutex>

#include "base/owned_handle.h"
#include "checker/recording.h"

namespace bench {

// The performance counter in nanoseconds.
[[nodiscard]] checker::Nanoseconds NowNanoseconds();

// A recording that is being written. Any thread; each event goes out by one system call, so that nothing is lost with a
// process that is killed.
class RecordingFile {
 public:
  // Throws std::runtime_error when the file cannot be made.
  RecordingFile(const std::filesystem::path& path, checker::Side side);

  // The thread's last error stays as it is.
  void Add(const checker::Event& event) const;
  // An event of this moment.
  void Add(checker::EventKind kind, std::uint32_t subject = 0, std::uint32_t result = 0) const;
  // The same when the process ends: its other threads are gone, one of them perhaps while it wrote.
  void AddLast(checker::EventKind kind, std::uint32_t result) const;

 private:
  void Write(const checker::Bytes& bytes) const;

  mutable std::mutex mutex_;
  OwnedHandle file_;
};

}  // namespace bench
