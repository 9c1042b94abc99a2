#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "context/driver_log.h"
#include "link/frame_sharing.h"
#include "render/direct_mode_component.h"
#include "runtime/fake_driver_log.h"
#include "support/background.h"
#include "support/fake_companion.h"
#include "support/fake_renderer.h"
#include "support/named_objects.h"

namespace ombrel::test {

class ConcreteDirectMode final : public DirectModeComponent {
 public:
  using DirectModeComponent::DirectModeComponent;
};

// The component over a renderer that keeps a journal, and a companion that offers nothing yet.
class DirectModeComponentTest : public testing::Test {
 protected:
  using Eye = vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t;
  using Layers = std::vector<std::pair<std::uint64_t, float>>;

  DirectModeComponentTest() { log_.TakeNew(); }
  ~DirectModeComponentTest() override {
    core_.StopLink();
    ClearLogSink();
  }

  std::array<std::uint64_t, 3> CreateSet(std::uint32_t process) {
    const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t desc{1280, 1440, 28, 1};
    vr::SharedTextureHandle_t handles[3]{1, 1, 1};
    component_.CreateSwapTextureSet(process, &desc, &handles);
    return {handles[0], handles[1], handles[2]};
  }
  // `x` is the pose's first element.
  void Submit(std::uint64_t left, std::uint64_t right, float uMin, float x = 0) {
    Eye eyes[2]{};
    eyes[0].hTexture = left;
    eyes[1].hTexture = right;
    eyes[0].bounds = {uMin, 0.125F, 0.5F, 0.75F};
    eyes[1].bounds = {uMin + 0.25F, 0, 1, 1};
    const vr::HmdMatrix34_t pose{{{x}}};
    component_.SubmitLayer(eyes, &pose);
  }
  [[nodiscard]] bool Connect() {
    core_.PrepareOutput({.format = 28, .width = 100, .height = 100, .invertY = 0});
    core_.SetUp();
    core_.StartLink();
    return companion_.Connect() && renderer_->journal.WaitForLine("AcquireOutput 0 16");
  }
  // Holds `call` up in the renderer's call of that line.
  void ExpectAStopToWaitFor(std::function<void()> call, const std::string& line) {
    Barrier inside;
    renderer_->onCall = [&](const std::string& made) {
      if (made == line) inside.Pass();
    };
    Background runtime(std::move(call));
    ASSERT_TRUE(inside.WaitForVisitor());
    Background stop([this] { core_.StopLink(); });
    EXPECT_TRUE(stop.StaysBlocked());
    inside.Open();
    EXPECT_TRUE(stop.Finishes() && runtime.Finishes());
  }
  // From here on: the left texture and left bound of each layer that is drawn.
  const Layers& NoteLayers() {
    renderer_->onLayer = [this](const LayerRecord& layer) {
      layers_.emplace_back(layer.leftTexture, (*layer.bounds)[0].uMin);
    };
    return layers_;
  }
  // The first element of the pose beside an output's picture.
  [[nodiscard]] static float PoseInSlot(std::int32_t slot) {
    float x = 0;
    std::memcpy(&x, NewestBlock() + SlotOffset(kFrameSharingBlockSize, slot), sizeof(x));
    return x;
  }
  // Presents until a frame is taken.
  [[nodiscard]] bool PresentTaken() {
    return WaitUntil([this] {
      component_.Present(0);
      return renderer_->journal.Count("BeginLayers") > 0;
    });
  }

  bench::CallRecorder recorder_;
  bench::FakeDriverLog log_{recorder_};
  bool hasSink_ = (SetLogSinkIfNone(&log_), true);
  FakeCompanion companion_;
  std::unique_ptr<FakeRenderer> made_ = std::make_unique<FakeRenderer>();
  FakeRenderer* renderer_ = made_.get();
  OmbrelCore core_{std::move(made_)};
  ConcreteDirectMode component_{core_, *renderer_};

 private:
  Layers layers_;
};

}  // namespace ombrel::test
