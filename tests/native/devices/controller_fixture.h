#pragma once

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "companion/controller_record.h"
#include "context/driver_context.h"
#include "context/driver_log.h"
#include "devices/controller_device.h"
#include "runtime/fake_runtime.h"
#include "support/runtime_lines.h"

namespace ombrel::test {

// A controller that is not activated yet, and a runtime. The test plays the link's reader thread as well.
class ControllerTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  static constexpr std::uint32_t kIndex = 1;

  ControllerTest() {
    EXPECT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
    SetLogSinkIfNone(&runtime_.Log());
  }
  ~ControllerTest() override {
    ClearLogSink();
    Context().Clear();
  }

  void Activate() {
    EXPECT_EQ(controller_.Activate(kIndex), vr::VRInitError_None);
    NewInputs();
  }
  // What a companion says of it.
  void SendRecord(const companion::ControllerRecord& record) {
    const companion::Bytes message = companion::EncodeControllerUpdate(record);
    controller_.UpdateFromRecord(ReadRecord<ombrel::ControllerUpdate>(std::as_bytes(std::span(message)).subspan(8)));
  }
  [[nodiscard]] vr::DriverPose_t Pose() {
    vr::DriverPose_t pose{};
    EXPECT_EQ(controller_.GetPose(&pose), &pose);
    return pose;
  }
  // What was told of inputs since the last call of this, or since the activation.
  Lines NewInputs() {
    Lines lines = From(inputsSeen_, InputLines(runtime_));
    inputsSeen_ += lines.size();
    return lines;
  }
  [[nodiscard]] std::size_t PosesSent() { return runtime_.Poses().Count(kIndex); }

  bench::FakeRuntime runtime_;
  ControllerDevice controller_{nullptr, &runtime_.Host(), 0};

 private:
  std::size_t inputsSeen_ = 0;
};

}  // namespace ombrel::test
