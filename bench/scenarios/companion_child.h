#pragma once

#include <cstdint>
#include <string>

#include "base/child_process.h"

namespace bench::scenarios {

// A companion in a process of its own, "Ombrel.exe", that lives up to a given point of its life and then waits to be
// killed: see companion/main.cpp for the points. Killed with its owner. One thread.
class CompanionChild {
 public:
  // Throws std::runtime_error when the program cannot be started.
  CompanionChild(const std::string& program, const std::string& point);

  // Whether it has come to its point.
  [[nodiscard]] bool HasArrived() const { return WaitUntilArrived(0); }
  [[nodiscard]] bool WaitUntilArrived(std::uint32_t timeoutMs) const;
  // Whether it went past the point before it was killed.
  [[nodiscard]] bool WentOn() const;
  void Kill() { process_.Kill(); }

 private:
  const std::string events_;
  OwnedHandle arrived_;
  OwnedHandle wentOn_;
  ChildProcess process_;
};

}  // namespace bench::scenarios
