#pragma once

#include <atomic>
#include <cstdint>

namespace ombrel::test {

// Counts on any thread, relaxed: synchronization in here would hide the driver's data races from the thread sanitizer.
class Counter {
 public:
  std::uint32_t operator++(int) { return count_.fetch_add(1, std::memory_order_relaxed); }
  void operator++() { count_.fetch_add(1, std::memory_order_relaxed); }
  void Reset() { count_.store(0, std::memory_order_relaxed); }
  operator std::uint32_t() const { return count_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::uint32_t> count_{0};
};

}  // namespace ombrel::test
