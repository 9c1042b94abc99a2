#pragma once

#include <cstdint>
#include <functional>
#include <thread>

#include "recorder/recording_file.h"

namespace bench {

// The id of a process of this name, spelled exactly so; 0 when there is none.
[[nodiscard]] std::uint32_t FindProcess(const char* name);

// Records that the companion was found and when it ended.
class CompanionWatch {
 public:
  // `whenEnded` is called on the watch's thread.
  CompanionWatch(std::uint32_t processId, const RecordingFile& file, std::function<void()> whenEnded);
  ~CompanionWatch();
  CompanionWatch(const CompanionWatch&) = delete;
  CompanionWatch& operator=(const CompanionWatch&) = delete;

 private:
  void Run(std::uint32_t processId);

  const RecordingFile& file_;
  std::function<void()> whenEnded_;
  OwnedHandle process_;
  OwnedHandle stop_;
  std::thread thread_;
};

}  // namespace bench
