#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ombrel {

// A sequence lock: threads share a value without blocking one another, and readers never get a torn one. Any thread may
// call Load and Store. A writer spins while another one copies; a reader that met a writer copies again. The value is
// copied by words that are atomic, so that a copy that is thrown away is no data race either.
template <typename T>
class SeqLock {
  static_assert(std::is_trivially_copyable_v<T>, "the value is copied word by word");

 public:
  SeqLock() { Store(T{}); }
  explicit SeqLock(const T& value) { Store(value); }
  ~SeqLock() = default;
  SeqLock(const SeqLock&) = delete;
  SeqLock& operator=(const SeqLock&) = delete;

  void Store(const T& value) {
    Words words{};
    std::memcpy(words.data(), &value, sizeof(T));
    const std::uint32_t even = EnterAsWriter();
    // Each word is a release store, so that none of them can be seen before the odd count that announces them.
    for (std::size_t i = 0; i < kWords; ++i) words_[i].store(words[i], std::memory_order_release);
    sequence_.store(even + 2, std::memory_order_release);
  }

  [[nodiscard]] T Load() const {
    Words words{};
    std::uint32_t before = 0;
    do {
      before = sequence_.load(std::memory_order_acquire);
      // Acquire loads keep the second look at the count behind the copy.
      for (std::size_t i = 0; i < kWords; ++i) words[i] = words_[i].load(std::memory_order_acquire);
    } while ((before & 1U) != 0 || before != sequence_.load(std::memory_order_relaxed));
    T value;
    std::memcpy(static_cast<void*>(&value), words.data(), sizeof(T));
    return value;
  }

 private:
  static constexpr std::size_t kWords = (sizeof(T) + 7) / 8;
  using Words = std::array<std::uint64_t, kWords>;

  std::uint32_t EnterAsWriter() {
    std::uint32_t even = sequence_.load(std::memory_order_relaxed) & ~1U;
    while (!sequence_.compare_exchange_weak(even, even + 1, std::memory_order_acq_rel)) even &= ~1U;
    return even;
  }

  std::atomic<std::uint32_t> sequence_{0};
  std::array<std::atomic<std::uint64_t>, kWords> words_{};
};

}  // namespace ombrel
