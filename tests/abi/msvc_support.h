#pragma once

#include <openvr_driver.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

namespace ombrel::test {

// Room for a structure result between guard bytes.
template <typename Result>
class GuardedResult {
 public:
  GuardedResult() { memory_.fill(kCanary); }

  [[nodiscard]] void* Address() { return memory_.data() + kGuardBytes; }
  [[nodiscard]] Result Value() const {
    Result value;
    std::memcpy(&value, memory_.data() + kGuardBytes, sizeof(value));
    return value;
  }
  [[nodiscard]] bool IsUntouchedAround() const {
    const auto isCanary = [](std::uint8_t guard) { return guard == kCanary; };
    return std::all_of(memory_.begin(), memory_.begin() + kGuardBytes, isCanary) &&
           std::all_of(memory_.end() - kGuardBytes, memory_.end(), isCanary);
  }

 private:
  static constexpr std::uint8_t kCanary = 0xC5;
  static constexpr std::ptrdiff_t kGuardBytes = 512;  // more than any result, and a multiple of every alignment
  alignas(16) std::array<std::uint8_t, 2 * kGuardBytes + sizeof(Result)> memory_;
};

// What MSVC's side gets for the device's pose: exactly that structure is written, and its address is the answer.
[[nodiscard]] vr::DriverPose_t PoseByMsvc(void* device);

// One call that reached the runtime of the MSVC side.
struct HostCall {
  std::string method;
  std::string text;
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  bool operator==(const HostCall&) const = default;
};

// The calls so far, oldest first, from any thread.
[[nodiscard]] std::vector<HostCall> HostCalls();
void ForgetHostCalls();

}  // namespace ombrel::test
