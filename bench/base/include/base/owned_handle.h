#pragma once

#include <windows.h>

#include <utility>

namespace bench {

// A kernel handle that is closed with its owner. Null and INVALID_HANDLE_VALUE both count as none.
class OwnedHandle {
 public:
  OwnedHandle() = default;
  explicit OwnedHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    other.Reset();
    return *this;
  }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  ~OwnedHandle() { Reset(); }

  HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  void Reset() {
    if (handle_ != nullptr) CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace bench
