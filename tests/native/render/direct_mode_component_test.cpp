#include "render/direct_mode_component.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "context/driver_log.h"
#include "support/background.h"
#include "support/fake_companion.h"
#include "support/fake_renderer.h"
#include "support/fake_runtime.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class ConcreteDirectMode final : public DirectModeComponent {
 public:
  using DirectModeComponent::DirectModeComponent;
};

class DirectModeComponentTest : public testing::Test {
 protected:
  using Eye = vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t;
  using Layers = std::vector<std::pair<std::uint64_t, float>>;

  DirectModeComponentTest() { log_.lines.Clear(); }
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
  void Submit(std::uint64_t left, std::uint64_t right, float uMin) {
    Eye eyes[2]{};
    eyes[0].hTexture = left;
    eyes[1].hTexture = right;
    eyes[0].bounds = {uMin, 0.125F, 0.5F, 0.75F};
    eyes[1].bounds = {uMin + 0.25F, 0, 1, 1};
    const vr::HmdMatrix34_t pose{};
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
  // Presents until a frame is taken.
  [[nodiscard]] bool PresentTaken() {
    return WaitUntil([this] {
      component_.Present(0);
      return renderer_->journal.Count("BeginLayers") > 0;
    });
  }

  FakeDriverLog log_;
  bool hasSink_ = (SetLogSinkIfNone(&log_), true);
  FakeCompanion companion_;
  std::unique_ptr<FakeRenderer> made_ = std::make_unique<FakeRenderer>();
  FakeRenderer* renderer_ = made_.get();
  OmbrelCore core_{std::move(made_)};
  ConcreteDirectMode component_{core_, *renderer_};

 private:
  Layers layers_;
};

TEST_F(DirectModeComponentTest, LogsItsConstruction) {
  const ConcreteDirectMode another(core_, *renderer_);
  EXPECT_EQ(log_.lines.All(), Lines{"Creating Direct driver component \n"});
}

TEST_F(DirectModeComponentTest, MakesAndRegistersThreeTextures) {
  EXPECT_EQ(CreateSet(1), (std::array<std::uint64_t, 3>{100, 101, 102}));
  EXPECT_EQ(log_.lines.All(), Lines{"Create swap requested, w: 1280, h: 1440, format: 28 samples: 1 \n"});
  EXPECT_EQ(renderer_->journal.All(), (Lines{"CreateSwapTexture 1280 1440 28 1", "CreateSwapTexture 1280 1440 28 1",
                                             "CreateSwapTexture 1280 1440 28 1", "RegisterTexture 100",
                                             "RegisterTexture 101", "RegisterTexture 102"}));
  EXPECT_EQ(renderer_->liveSwapTextures, 3);
}

TEST_F(DirectModeComponentTest, SkipsATextureThatCouldNotBeMade) {
  std::uint64_t next = 0;
  renderer_->nextSwapHandle = [&] { return next++ == 1 ? 0U : 50U + next; };
  EXPECT_EQ(CreateSet(1), (std::array<std::uint64_t, 3>{51, 0, 53}));
  EXPECT_EQ(renderer_->journal.From(3), (Lines{"RegisterTexture 51", "RegisterTexture 53"}));
  renderer_->journal.Clear();
  component_.DestroySwapTextureSet(0);
  EXPECT_TRUE(renderer_->journal.All().empty());
  component_.DestroySwapTextureSet(53);
  EXPECT_EQ(renderer_->journal.All(), (Lines{"UnregisterTexture 53", "UnregisterTexture 51"}));
}

TEST_F(DirectModeComponentTest, AnyHandleDestroysItsWholeSet) {
  for (std::size_t i = 0; i < 3; ++i) {
    const auto set = CreateSet(1);
    const auto other = CreateSet(1);
    renderer_->journal.Clear();
    log_.lines.Clear();
    component_.DestroySwapTextureSet(set[i]);
    EXPECT_EQ(log_.lines.All(), Lines{"Destroy set: " + std::to_string(set[i]) + "\n"});
    Lines expected;
    for (const std::uint64_t handle : {set[2], set[1], set[0]}) {
      expected.push_back("UnregisterTexture " + std::to_string(handle));
    }
    EXPECT_EQ(renderer_->journal.All(), expected);
    EXPECT_EQ(renderer_->liveSwapTextures, 3);
    component_.DestroySwapTextureSet(other[0]);
    EXPECT_EQ(renderer_->liveSwapTextures, 0);
  }
}

TEST_F(DirectModeComponentTest, AnUnknownHandleDestroysNothing) {
  CreateSet(1);
  component_.DestroySwapTextureSet(5);
  EXPECT_EQ(renderer_->liveSwapTextures, 3);
}

TEST_F(DirectModeComponentTest, DestroysAllSetsOfAProcessWithoutAWord) {
  CreateSet(1);
  CreateSet(2);
  CreateSet(1);
  log_.lines.Clear();
  component_.DestroyAllSwapTextureSets(1);
  EXPECT_EQ(renderer_->liveSwapTextures, 3);
  EXPECT_EQ(log_.lines.Size(), 0U);
  component_.DestroyAllSwapTextureSets(2);
  EXPECT_EQ(renderer_->liveSwapTextures, 0);
}

TEST_F(DirectModeComponentTest, IndicesGoRoundInThrees) {
  vr::SharedTextureHandle_t handles[2]{7, 7};
  std::uint32_t indices[2]{2, 0};
  component_.GetNextSwapTextureSetIndex(handles, &indices);
  EXPECT_EQ(indices[0], 0U);
  EXPECT_EQ(indices[1], 1U);
  component_.GetNextSwapTextureSetIndex(nullptr, &indices);
  EXPECT_EQ(indices[0], 1U);
  EXPECT_EQ(indices[1], 2U);
}

TEST_F(DirectModeComponentTest, AllLayersOfAFrameAreDrawnWithTheLastBounds) {
  std::vector<EyeBounds> drawn;
  renderer_->onLayer = [&](const LayerRecord& layer) { drawn.push_back(*layer.bounds); };
  Submit(1, 2, 0.0F);
  Submit(3, 4, 0.0625F);
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 3 4"), 1U);
  ASSERT_EQ(drawn.size(), 2U);
  for (const EyeBounds& bounds : drawn) {
    EXPECT_EQ(bounds[0].uMin, 0.0625F);
    EXPECT_EQ(bounds[0].vMin, 0.125F);
    EXPECT_EQ(bounds[0].uMax, 0.5F);
    EXPECT_EQ(bounds[0].vMax, 0.75F);
    EXPECT_EQ(bounds[1].uMin, 0.3125F);
  }
}

TEST_F(DirectModeComponentTest, LayersPileUpWhileTheLinkIsDownAndAreDrawnWithTheLastBounds) {
  for (std::uint64_t frame = 1; frame <= 3; ++frame) {
    Submit(frame, 10 + frame, 0.0625F * static_cast<float>(frame));
    component_.Present(9);
    component_.PostPresent();
  }
  EXPECT_TRUE(renderer_->journal.All().empty());
  const auto& drawn = NoteLayers();
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  EXPECT_EQ(drawn, (Layers{{1, 0.1875F}, {2, 0.1875F}, {3, 0.1875F}}));
}

TEST_F(DirectModeComponentTest, OfManyLayersThatPileUpTheNewestAreKept) {
  constexpr std::uint64_t kMost = DirectModeComponent::kMostLayers;
  for (std::uint64_t layer = 1; layer <= kMost + 2; ++layer) Submit(layer, layer, 0);
  std::vector<std::uint64_t> drawn;
  renderer_->onLayer = [&](const LayerRecord& layer) { drawn.push_back(layer.leftTexture); };
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  ASSERT_EQ(drawn.size(), kMost);
  EXPECT_EQ(drawn.front(), 3U);
  EXPECT_EQ(drawn.back(), kMost + 2);
}

TEST_F(DirectModeComponentTest, PassesTheSyncTextureOnAndForgetsTheLayersAfterwards) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  renderer_->journal.Clear();
  Submit(1, 2, 0);
  component_.Present(77);
  component_.Present(78);
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 77 16"), 1U);
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 78 16"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 1 1 2"), 1U);
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 0U);
}

TEST_F(DirectModeComponentTest, ALayerThatIsSubmittedWhileAFrameIsDrawnIsTheNextFrames) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  const auto& drawn = NoteLayers();
  renderer_->onCall = [this](const std::string& line) {
    if (line != "AcquireSyncTexture 77 16") return;
    Background other([this] { Submit(3, 4, 0.25F); });
    EXPECT_TRUE(other.Finishes()) << "it waits for a texture that it has nothing to do with";
  };
  Submit(1, 2, 0.125F);
  component_.Present(77);
  EXPECT_EQ(drawn, (Layers{{1, 0.125F}}));
  component_.Present(78);
  EXPECT_EQ(drawn.back(), std::pair(std::uint64_t{3}, 0.25F));
}

// A frame that fails stays as it was, like one for which there is no link.
TEST_F(DirectModeComponentTest, ALayerThatIsSubmittedWhileNobodyTakesAFrameIsDrawnBehindIt) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  renderer_->onCall = [this](const std::string& line) {
    if (line != "AcquireSyncTexture 77 16") return;
    Submit(3, 4, 0.25F);
    throw std::bad_alloc();
  };
  Submit(1, 2, 0.125F);
  component_.Present(77);
  const auto& drawn = NoteLayers();
  component_.Present(78);
  EXPECT_EQ(drawn, (Layers{{1, 0.25F}, {3, 0.25F}}));
}

TEST_F(DirectModeComponentTest, FramesThatArePresentedAtOnceAreDrawnOneAfterTheOther) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  Barrier drawing;
  renderer_->onCall = [&](const std::string& line) {
    if (line == "AcquireSyncTexture 77 16") drawing.Pass();
  };
  Background first([this] { component_.Present(77); });
  ASSERT_TRUE(drawing.WaitForVisitor());
  Background second([this] { component_.Present(78); });
  EXPECT_TRUE(second.StaysBlocked());
  EXPECT_EQ(renderer_->journal.Count("AcquireSyncTexture 78 16"), 0U);
  drawing.Open();
  EXPECT_TRUE(first.Finishes() && second.Finishes());
}

TEST_F(DirectModeComponentTest, ASetThatIsBeingMadeIsNotHalfDestroyed) {
  Barrier registering;
  renderer_->onCall = [&](const std::string& line) {
    if (line == "RegisterTexture 101") registering.Pass();
  };
  Background making([this] { CreateSet(1); });
  ASSERT_TRUE(registering.WaitForVisitor());
  Background destroying([this] { component_.DestroyAllSwapTextureSets(1); });
  EXPECT_TRUE(destroying.StaysBlocked());
  registering.Open();
  EXPECT_TRUE(making.Finishes() && destroying.Finishes());
  EXPECT_EQ(renderer_->liveSwapTextures, 0);
  EXPECT_EQ(renderer_->journal.From(6),
            (Lines{"UnregisterTexture 102", "UnregisterTexture 101", "UnregisterTexture 100"}));
}

TEST_F(DirectModeComponentTest, TexturesOfAStoppedLinkAreLeftAlone) {
  const auto set = CreateSet(1);
  core_.StopLink();
  renderer_->journal.Clear();
  EXPECT_EQ(CreateSet(1), (std::array<std::uint64_t, 3>{1, 1, 1}));
  component_.DestroySwapTextureSet(set[0]);
  component_.DestroyAllSwapTextureSets(1);
  component_.Present(77);
  component_.PostPresent();
  EXPECT_TRUE(renderer_->journal.All().empty());
  EXPECT_EQ(renderer_->liveSwapTextures, 3);
}

TEST_F(DirectModeComponentTest, WhatACallerOfAStoppedLinkPassesIsNotLookedAt) {
  core_.StopLink();
  const Eye eyes[2]{};
  component_.SubmitLayer(eyes, nullptr);
  component_.GetFrameTiming(nullptr);
}

TEST_F(DirectModeComponentTest, AStopWaitsForTexturesThatAreBeingMade) {
  ExpectAStopToWaitFor([this] { CreateSet(1); }, "RegisterTexture 102");
}

TEST_F(DirectModeComponentTest, AStopWaitsForASetThatIsBeingDestroyed) {
  const auto set = CreateSet(1);
  ExpectAStopToWaitFor([&] { component_.DestroySwapTextureSet(set[0]); }, "UnregisterTexture 100");
}

TEST_F(DirectModeComponentTest, AStopWaitsForAProcessWhoseSetsAreBeingDestroyed) {
  CreateSet(1);
  ExpectAStopToWaitFor([this] { component_.DestroyAllSwapTextureSets(1); }, "UnregisterTexture 100");
}

// The component goes right behind the stop. What a call does behind the hand-off nobody can hold up: the thread
// sanitizer is the judge.
TEST_F(DirectModeComponentTest, APresentHasLeftTheComponentWhenTheLinkHasStopped) {
  ASSERT_TRUE(Connect());
  ASSERT_TRUE(PresentTaken());
  auto component = std::make_unique<ConcreteDirectMode>(core_, *renderer_);
  Barrier drawn;
  renderer_->onCall = [&](const std::string& line) {
    if (line == "ReleaseSyncTexture") drawn.Pass();
  };
  Background runtime([present = component.get()] { present->Present(77); });
  ASSERT_TRUE(drawn.WaitForVisitor());
  Background stop([this] { core_.StopLink(); });
  EXPECT_TRUE(stop.StaysBlocked());
  drawn.Open();
  ASSERT_TRUE(stop.Finishes());
  component.reset();
  EXPECT_TRUE(runtime.Finishes());
}

// Likewise. Nothing but the stop puts the calls in front of the end of the component.
TEST_F(DirectModeComponentTest, ALayerAndATimingHaveLeftTheComponentWhenTheLinkHasStopped) {
  auto component = std::make_unique<ConcreteDirectMode>(core_, *renderer_);
  std::atomic<bool> isOut{false};
  Background runtime([&, direct = component.get()] {
    const Eye eyes[2]{};
    const vr::HmdMatrix34_t pose{};
    vr::DriverDirectMode_FrameTiming timing{};
    direct->SubmitLayer(eyes, &pose);
    direct->GetFrameTiming(&timing);
    isOut.store(true, std::memory_order_relaxed);
  });
  ASSERT_TRUE(WaitUntil([&] { return isOut.load(std::memory_order_relaxed); }));
  core_.StopLink();
  component.reset();
  EXPECT_TRUE(runtime.Finishes());
}

TEST_F(DirectModeComponentTest, TellsNothingOfItsFrameTiming) {
  component_.Present(0);
  vr::DriverDirectMode_FrameTiming timing;
  std::memset(&timing, 0x5C, sizeof(timing));
  const vr::DriverDirectMode_FrameTiming before = timing;
  component_.GetFrameTiming(&timing);
  EXPECT_EQ(std::memcmp(&timing, &before, sizeof(timing)), 0);
}

}  // namespace
}  // namespace ombrel::test
