#pragma once

#include <utility>

namespace ombrel {

#if defined(_WIN32)
using NativeHandle = void*;  // HANDLE
inline constexpr NativeHandle kNoHandle = nullptr;
#else
using NativeHandle = int;  // file descriptor
inline constexpr NativeHandle kNoHandle = -1;
#endif

// Owns a kernel handle, or a file descriptor where there are no handles. For one thread at a time.
class OwnedHandle {
 public:
  OwnedHandle() = default;
  // On Windows INVALID_HANDLE_VALUE is none as well: CreateFile fails with it, other calls with null.
  explicit OwnedHandle(NativeHandle native);
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  OwnedHandle(OwnedHandle&& other) noexcept : native_(std::exchange(other.native_, kNoHandle)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    if (this != &other) {
      Reset();
      native_ = std::exchange(other.native_, kNoHandle);
    }
    return *this;
  }
  ~OwnedHandle() { Reset(); }

  [[nodiscard]] NativeHandle Get() const { return native_; }
  explicit operator bool() const { return native_ != kNoHandle; }
  // Closes it.
  void Reset();

 private:
  NativeHandle native_ = kNoHandle;
};

}  // namespace ombrel
