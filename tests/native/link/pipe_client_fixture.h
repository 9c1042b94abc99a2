#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "link/companion_pipe_client.h"
#include "recording_listener.h"
#include "support/an_hour_ahead.h"
#include "support/background.h"
#include "support/bytes.h"
#include "support/fake_companion.h"

namespace ombrel::test {

// A link that is not started yet, with one listener to everything, and a companion that offers nothing yet.
class PipeClientTest : public testing::Test {
 protected:
  using Lines = Journal::Lines;

  PipeClientTest() { listener_.ListenToAll(); }
  ~PipeClientTest() override { client_.Stop(); }

  // Started, connected, and the listener knows.
  [[nodiscard]] bool Connect() {
    client_.Start();
    return companion_.Connect() && WaitFor("up");
  }
  // Started, with the pipe from the driver alone.
  [[nodiscard]] bool ConnectFirstPipe() {
    client_.Start();
    companion_.in.Offer();
    return companion_.in.Accept();
  }
  // A pose that is heard: the link's first.
  [[nodiscard]] bool SendPose() { return companion_.SendPose(0, 0, 0, 1) && WaitFor("tracking"); }
  [[nodiscard]] bool WaitFor(const std::string& line, std::size_t times = 1) const {
    return listener_.journal.WaitForLine(line, times);
  }
  // More pulses than the companion's pipe and the queue before it hold.
  void SendUntilStuck() {
    for (std::uint32_t i = 0; i < 5000; ++i)
      client_.Send(LinkMessageType::kHapticPulse, HapticPulse{i, 0, 0, 0}, AnHourAhead());
  }
  // A good message behind others: once it is heard, they have been dealt with.
  [[nodiscard]] bool SendMark() { return companion_.Send(9, Bytes().U32(++mark_)) && WaitFor(Mark()); }
  [[nodiscard]] std::string Mark() const { return "framerate " + std::to_string(mark_); }

  FakeCompanion companion_;
  CompanionPipeClient client_;
  RecordingListener listener_{client_};

 private:
  std::uint32_t mark_ = 1000;
};

}  // namespace ombrel::test
