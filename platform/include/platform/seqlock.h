#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ombrel {

// A value that threads share without a lock: readers always get a whole value, never half of two. Any thread may call
// Load and Store. A writer waits for another writer only as long as that one copies; a reader that met a writer copies
// again. Meant for small records that change often.
template <typename T>
class SeqLock {
  static_assert(std::is_trivially_copyable_v<T>, "the value is copied word by word");

 public:
  SeqLock() { Store(T{}); }
  explicit SeqLock(const T& value) { Store(value); }
  ~SeqLock() = default;
  SeqLock(const SeqLock&) = delete;
  SeqLock& operator=(const SeqLock&) = delete;

  void Store(const T& value) { StoreBehind(EnterAsWriter(), value); }

  // The same for a value that one thread stores, and no other at the time: it need not look out for other writers, whose
  // exclusion costs more than the copy.
  void StoreAlone(const T& value) {
    const std::uint32_t even = sequence_.load(std::memory_order_relaxed);
    sequence_.store(even + 1, std::memory_order_relaxed);
    StoreBehind(even, value);
  }

  [[nodiscard]] T Load() const {
    std::array<std::uint64_t, kWords> words{};
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

  // The count is even + 1 by now.
  void StoreBehind(std::uint32_t even, const T& value) {
    // Each word is a release store, so that none of them can be seen before the odd count that announces them.
    for (std::size_t i = 0; i < kWords; ++i) words_[i].store(WordOf(value, i), std::memory_order_release);
    sequence_.store(even + 2, std::memory_order_release);
  }

  // What the last word has too many is zero.
  static std::uint64_t WordOf(const T& value, std::size_t index) {
    constexpr std::size_t kTail = sizeof(T) % 8;
    const auto* bytes = reinterpret_cast<const std::byte*>(&value) + 8 * index;
    std::uint64_t word = 0;
    if constexpr (kTail != 0) {
      if (index + 1 == kWords) {
        std::memcpy(&word, bytes, kTail);
        return word;
      }
    }
    std::memcpy(&word, bytes, sizeof(word));
    return word;
  }

  std::uint32_t EnterAsWriter() {
    std::uint32_t even = sequence_.load(std::memory_order_relaxed) & ~1U;
    while (!sequence_.compare_exchange_weak(even, even + 1, std::memory_order_acq_rel)) even &= ~1U;
    return even;
  }

  std::atomic<std::uint32_t> sequence_{0};
  std::array<std::atomic<std::uint64_t>, kWords> words_{};
};

}  // namespace ombrel
