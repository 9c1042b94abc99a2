#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <stop_token>
#include <thread>

#include "picture/image.h"

namespace bench {

// Saves pictures on a thread of its own, so that compressing them holds no frame up. What is left when it goes is saved first.
class PictureWriter {
 public:
  PictureWriter();

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
  void Run(const std::stop_token& end);

  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::deque<Job> jobs_;  // the first one is being saved
  std::atomic<std::uint64_t> saved_ = 0;
  std::atomic<std::uint64_t> failed_ = 0;
  std::jthread thread_;  // asked to end, and joined, before anything above goes
};

}  // namespace bench
