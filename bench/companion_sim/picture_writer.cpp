#include "picture_writer.h"

#include "picture/drawing.h"

namespace bench {
namespace {

constexpr std::size_t kWaitingLimit = 12;

}  // namespace

PictureWriter::PictureWriter() : thread_([this](const std::stop_token& end) { Run(end); }) {}

bool PictureWriter::Save(Image image, std::filesystem::path path) {
  const std::scoped_lock lock(mutex_);
  if (jobs_.size() >= kWaitingLimit) return false;
  jobs_.push_back({std::move(image), std::move(path)});
  changed_.notify_all();
  return true;
}

void PictureWriter::Finish() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return jobs_.empty(); });
}

void PictureWriter::Run(const std::stop_token& end) {
  std::unique_lock lock(mutex_);
  while (changed_.wait(lock, end, [this] { return !jobs_.empty(); })) {
    const Job& job = jobs_.front();  // a deque's elements stay where they are while others are added
    lock.unlock();
    ++(SavePng(job.image, job.path) ? saved_ : failed_);
    lock.lock();
    jobs_.pop_front();
    changed_.notify_all();
  }
}

}  // namespace bench
