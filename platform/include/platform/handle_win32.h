#pragma once

#include <windows.h>

#include <utility>

namespace ombrel {

// Owns a kernel handle. Both of the values that the system uses for "none" count as empty.
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) {
      Reset();
      handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  [[nodiscard]] HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  void Reset() {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
  }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace ombrel
