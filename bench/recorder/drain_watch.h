#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "recorder/recording_file.h"

namespace bench {

// Tells when the far end of a pipe has read what was written, by flushing a second handle of the pipe on a thread of its
// own. Under Wine alone: Windows lets one call after the other use a synchronous pipe, so that a flush would hold up the
// next write. Methods come from the threads that use the pipe.
class DrainWatch {
 public:
  explicit DrainWatch(const RecordingFile& file);
  ~DrainWatch();
  DrainWatch(const DrainWatch&) = delete;
  DrainWatch& operator=(const DrainWatch&) = delete;

  void Open(HANDLE pipe);
  void Written(std::uint64_t bytes);
  // To be called before the pipe is closed: the second handle would keep it open.
  void Close();

 private:
  void Run();
  void Record(std::uint64_t bytes) const;

  const RecordingFile& file_;
  const bool works_;
  std::mutex mutex_;
  std::condition_variable changed_;
  OwnedHandle pipe_;
  std::uint64_t written_ = 0, drained_ = 0;
  bool flushing_ = false, stop_ = false;
  std::thread thread_;
};

}  // namespace bench
