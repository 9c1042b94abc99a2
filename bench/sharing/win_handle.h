#pragma once

#include <windows.h>

#include <utility>

namespace bench {

// Owns a kernel handle. Null means none; INVALID_HANDLE_VALUE is never stored.
class WinHandle {
 public:
  WinHandle() = default;
  explicit WinHandle(HANDLE handle) : handle_(handle) {}
  WinHandle(WinHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  WinHandle& operator=(WinHandle&& other) noexcept {
    WinHandle closing(std::move(other));
    std::swap(handle_, closing.handle_);
    return *this;
  }
  ~WinHandle() {
    if (handle_ != nullptr) CloseHandle(handle_);
  }

  [[nodiscard]] HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace bench
