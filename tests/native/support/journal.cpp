#include "support/journal.h"

#include <algorithm>
#include <utility>

#include "support/wait.h"

namespace ombrel::test {

void Journal::Add(std::string line) {
  const std::lock_guard guard(mutex_);
  lines_.push_back(std::move(line));
  changed_.notify_all();
}

Journal::Lines Journal::All() const { return From(0); }

Journal::Lines Journal::From(std::size_t first) const {
  const std::lock_guard guard(mutex_);
  const std::size_t begin = std::min(first, lines_.size());
  return {lines_.begin() + static_cast<std::ptrdiff_t>(begin), lines_.end()};
}

std::size_t Journal::Size() const {
  const std::lock_guard guard(mutex_);
  return lines_.size();
}

std::size_t Journal::Count(const std::string& line) const {
  const std::lock_guard guard(mutex_);
  return CountLocked(line);
}

void Journal::Clear() {
  const std::lock_guard guard(mutex_);
  lines_.clear();
}

bool Journal::WaitForSize(std::size_t size) const {
  return WaitFor([&] { return lines_.size() >= size; });
}

bool Journal::WaitForLine(const std::string& line, std::size_t times) const {
  return WaitFor([&] { return CountLocked(line) >= times; });
}

bool Journal::WaitFor(const std::function<bool()>& ready) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kPatience, ready);
}

std::size_t Journal::CountLocked(const std::string& line) const {
  return static_cast<std::size_t>(std::ranges::count(lines_, line));
}

}  // namespace ombrel::test
