#pragma once

#include <chrono>
#include <cstdint>

#include "companion/pipe_server.h"
#include "companion/tracking_update.h"
#include "support/driver_test.h"

namespace ombrel::test {

inline constexpr std::uint32_t kTimeoutMs = 10000;

// A driver with a companion on the real pipe names, both in the test's process.
class LinkTest : public DriverTest {
 protected:
  using DriverTest::DriverTest;

  // Init with the pipes there, and the headset activated; returns when the link is up.
  void Connect();

  // Sends one message, or part of one; the test fails if there is no connection.
  void Send(const companion::Bytes& bytes);
  // Sends a message and returns when the runtime has got the pose that answers it.
  vr::DriverPose_t SendForPose(const companion::Bytes& message);
  // Returns when everything that was sent so far has been taken in: after a pose of its own, which moves the head.
  void Fence();

  // Waits until `condition` holds; it is looked at after each call of the driver into the runtime.
  template <typename Condition>
  [[nodiscard]] bool WaitFor(Condition condition) {
    return runtime.Journal().WaitUntil(condition, std::chrono::milliseconds(kTimeoutMs));
  }
  [[nodiscard]] std::size_t PosesSent() { return runtime.Poses().Count(0); }

  companion::PipeServer server;

 private:
  std::uint32_t fences_ = 0;
};

}  // namespace ombrel::test
