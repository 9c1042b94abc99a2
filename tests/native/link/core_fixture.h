#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "link/ombrel_core.h"
#include "recording_listener.h"
#include "support/an_hour_ahead.h"
#include "support/background.h"
#include "support/fake_companion.h"
#include "support/fake_renderer.h"

namespace ombrel::test {

// A core with a renderer that keeps a journal, and a companion that offers nothing yet. Layers and frames have made-up
// handles.
class OmbrelCoreTest : public testing::Test {
 protected:
  using Lines = Journal::Lines;

  ~OmbrelCoreTest() override {
    if (core_) core_->StopLink();
  }

  void PrepareOutput() { core_->PrepareOutput({.format = 28, .width = 2560, .height = 1440, .invertY = 1}); }
  // With the poses' listener, which a headset adds, and behind it one that says when the core has heard.
  void SetUpCore() {
    core_->SetUp();
    core_->Client().AddListener(static_cast<ITrackingUpdatedListener*>(core_.get()));
    listener_.ListenToAll();
    core_->StartLink();
  }
  // Up to the moment that frames flow; the journal is empty then.
  [[nodiscard]] bool Stream() {
    PrepareOutput();
    SetUpCore();
    return ConnectWhole() && WaitForStreaming();
  }
  // Up to the moment that everybody has heard of the connection: a drop before would be heard of twice.
  [[nodiscard]] bool ConnectWhole() { return companion_.Connect() && listener_.journal.WaitForLine("up"); }
  // Whether the hand-off takes frames, shown by one without layers or sync texture that an output is drawn for. It is
  // the connection's first frame.
  [[nodiscard]] bool WaitForStreaming() {
    const bool streams = WaitUntil([this] {
      renderer_->journal.Clear();
      std::vector<LayerRecord> layer{{1, 1, &bounds_}};
      core_->Frames().HandOffLayers(0, layer, pose_);
      return layer.empty();
    });
    renderer_->journal.Clear();
    return streams;
  }
  // Up to the moment that a connection's outputs are being made, which then waits at the barrier.
  [[nodiscard]] bool ConnectUpTo(Barrier& making) {
    PrepareOutput();
    renderer_->onCall = [&making](const std::string& line) {
      if (line == "CreateOutputTextures") making.Pass();
    };
    SetUpCore();
    return companion_.Connect() && making.WaitForVisitor();
  }
  // A connection for which no outputs can be made.
  [[nodiscard]] bool ConnectWithoutOutputs() {
    renderer_->canCreateOutputs = false;
    PrepareOutput();
    SetUpCore();
    return companion_.Connect() && WaitForCall("CreateOutputTextures", 2);
  }
  [[nodiscard]] bool Receive() { return companion_.Receive().has_value(); }
  // Whether nothing else has been sent: what is sent now comes next.
  [[nodiscard]] bool HasReceivedAll() {
    core_->Client().Send(LinkMessageType::kHapticPulse, HapticPulse{}, AnHourAhead());
    const auto next = companion_.Receive();
    return next && next->type == 11;
  }
  [[nodiscard]] bool SetFrameRate(std::uint32_t rate) {
    return companion_.Send(9, Bytes().U32(rate)) && listener_.journal.WaitForLine("framerate " + std::to_string(rate));
  }
  [[nodiscard]] bool SendPose() {
    const std::size_t heard = listener_.journal.Count("tracking");
    return companion_.SendPose(0, 0, 0, 1) && listener_.journal.WaitForLine("tracking", heard + 1);
  }
  void HandOff(std::uint64_t syncTexture = 0) { core_->Frames().HandOffLayers(syncTexture, layers_, pose_); }
  [[nodiscard]] Lines Calls() const { return renderer_->journal.All(); }
  [[nodiscard]] bool WaitForCall(const std::string& line, std::size_t times = 1) const {
    return renderer_->journal.WaitForLine(line, times);
  }

  FakeCompanion companion_;
  EyeBounds bounds_{};
  std::vector<LayerRecord> layers_;
  FramePose pose_{};
  std::unique_ptr<FakeRenderer> made_ = std::make_unique<FakeRenderer>();
  FakeRenderer* renderer_ = made_.get();
  std::unique_ptr<OmbrelCore> core_ = std::make_unique<OmbrelCore>(std::move(made_));
  RecordingListener listener_{core_->Client()};
};

}  // namespace ombrel::test
