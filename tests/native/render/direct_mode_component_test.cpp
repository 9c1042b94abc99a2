// Swap textures, and what a stop of the link means for the runtime's calls.
#include <cstring>

#include "direct_mode_fixture.h"
#include "stopped_component.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

TEST_F(DirectModeComponentTest, LogsItsConstruction) {
  const ConcreteDirectMode another(core_, *renderer_);
  EXPECT_EQ(log_.TakeNew(), Lines{"Creating Direct driver component \n"});
}

TEST_F(DirectModeComponentTest, MakesAndRegistersThreeTextures) {
  EXPECT_EQ(CreateSet(1), (std::array<std::uint64_t, 3>{100, 101, 102}));
  EXPECT_EQ(log_.TakeNew(), Lines{"Create swap requested, w: 1280, h: 1440, format: 28 samples: 1 \n"});
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
    log_.TakeNew();
    component_.DestroySwapTextureSet(set[i]);
    EXPECT_EQ(log_.TakeNew(), Lines{"Destroy set: " + std::to_string(set[i]) + "\n"});
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
  log_.TakeNew();
  component_.DestroyAllSwapTextureSets(1);
  EXPECT_EQ(renderer_->liveSwapTextures, 3);
  EXPECT_TRUE(log_.TakeNew().empty());
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

// The component is destroyed right after the stop. No hook holds up what a call still does after the hand-off: a
// use-after-free there is the thread sanitizer's to find.
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

TEST_F(DirectModeComponentTest, ALayerAndATimingHaveLeftTheComponentWhenTheLinkHasStopped) {
  auto component = std::make_unique<ConcreteDirectMode>(core_, *renderer_);
  ExpectCallsToHaveLeft<ConcreteDirectMode>(core_, std::move(component), [](ConcreteDirectMode& direct) {
    const Eye eyes[2]{};
    const vr::HmdMatrix34_t pose{};
    vr::DriverDirectMode_FrameTiming timing{};
    direct.SubmitLayer(eyes, &pose);
    direct.GetFrameTiming(&timing);
  });
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
