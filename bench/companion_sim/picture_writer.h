#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <thread>

#include "picture/image.h"

namespace bench {

// Saves pictures on a thread of its own, so that compressing them holds no frame up. Its destructor saves the rest.
class PictureWriter {
 public:
  PictureWriter();
  ~PictureWriter();
  PictureWriter(const PictureWriter&) = delete;
  PictureWriter& operator=(const PictureWriter&) = delete;

  // False, and nothing is saved, when too many pictures wait already.
  bool Save(Image image, std::filesystem::path path);
  // Waits until all are saved.
  void Finish();

  std::uint64_t Saved() const { return saved_; }
  std::uint64_t Failed() const { return failed_; }

 private:
  struct Job {
    Image image;
    std::filesystem::path path;
  };
  void Run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> jobs_;  // the first one is being saved
  bool ending_ = false;
  std::atomic<std::uint64_t> saved_ = 0;
  std::atomic<std::uint64_t> failed_ = 0;
  std::thread thread_;
};

}  // namespace bench
