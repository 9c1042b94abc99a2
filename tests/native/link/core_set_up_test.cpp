// How a connection is set up for frames, and undone.
#include "core_fixture.h"

#include <cctype>

#include "platform/process.h"

namespace ombrel::test {
namespace {

TEST_F(OmbrelCoreTest, HasAPeriodOfSixtyFramesASecondFromTheStart) {
  PrepareOutput();
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitForCall("AcquireOutput 0 16"));
}

TEST_F(OmbrelCoreTest, MakesTheOutputsAnewForEachConnectionAndTakesTheFirst) {
  PrepareOutput();
  EXPECT_EQ(Calls(), (Lines{"Configure 28 2560 1440 1", "CreateOutputTextures"}));
  renderer_->journal.Clear();
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitForCall("ClearOutput 0"));
  EXPECT_EQ(Calls(), (Lines{"CreateOutputTextures", "AcquireOutput 0 16", "ClearOutput 0"}));
}

TEST_F(OmbrelCoreTest, DoesNotClearAnOutputThatItCouldNotTake) {
  renderer_->canAcquireOutput = false;
  PrepareOutput();
  SetUpCore();
  ASSERT_TRUE(ConnectWhole());
  EXPECT_EQ(Calls().back(), "AcquireOutput 0 16");
}

TEST_F(OmbrelCoreTest, SetsUpOnceHoweverOftenItIsAsked) {
  PrepareOutput();
  core_->SetUp();
  ASSERT_TRUE(Stream());
  EXPECT_TRUE(Calls().empty());
  ASSERT_TRUE(Receive());
  EXPECT_TRUE(HasReceivedAll());
}

TEST_F(OmbrelCoreTest, ConfiguresARendererOnlyOnce) {
  PrepareOutput();
  PrepareOutput();
  EXPECT_EQ(renderer_->journal.Count("Configure 28 2560 1440 1"), 1U);
}

TEST_F(OmbrelCoreTest, ACompanionMayBeThereLongBeforeTheRendererIsReady) {
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  // Poses do not wait, and no frame goes out meanwhile.
  ASSERT_TRUE(SendPose());
  EXPECT_FALSE(companion_.in.HasData(1500));
  layers_.push_back({1, 2, &bounds_});
  HandOff();
  EXPECT_EQ(layers_.size(), 1U);
  EXPECT_TRUE(Calls().empty());
  PrepareOutput();
  EXPECT_TRUE(WaitForStreaming());
  EXPECT_TRUE(Receive());
}

TEST_F(OmbrelCoreTest, GoesWithoutFramesWhenTheOutputsCannotBeMade) {
  ASSERT_TRUE(ConnectWithoutOutputs());
  ASSERT_TRUE(SendPose());
  HandOff(77);
  core_->Frames().HandOffTexture(5);
  EXPECT_EQ(Calls(), (Lines{"Configure 28 2560 1440 1", "CreateOutputTextures", "CreateOutputTextures"}));
}

TEST_F(OmbrelCoreTest, OutputsThatCouldNotBeMadeAreMadeForTheNextConnection) {
  PrepareOutput();
  renderer_->canCreateOutputs = false;
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  ASSERT_TRUE(WaitForCall("CreateOutputTextures", 2));
  renderer_->canCreateOutputs = true;
  companion_.Offer();
  companion_.Disconnect();
  ASSERT_TRUE(companion_.Accept());
  EXPECT_TRUE(WaitForStreaming());
  EXPECT_TRUE(Receive());
}

TEST_F(OmbrelCoreTest, OutputsThatCouldNotBeMadeAreMadeByAnotherActivation) {
  ASSERT_TRUE(ConnectWithoutOutputs());
  renderer_->canCreateOutputs = true;
  PrepareOutput();
  EXPECT_TRUE(WaitForStreaming());
}

TEST_F(OmbrelCoreTest, PosesGoOnWhileTheOutputsAreMade) {
  Barrier making;
  ASSERT_TRUE(ConnectUpTo(making));
  EXPECT_TRUE(SendPose());
  making.Open();
  EXPECT_TRUE(WaitForStreaming());
}

TEST_F(OmbrelCoreTest, APoseThatComesWhileTheOutputsAreMadeLetsAFrameGo) {
  Barrier making;
  ASSERT_TRUE(ConnectUpTo(making));
  ASSERT_TRUE(SendPose());
  making.Open();
  Background frame([this] {
    while (renderer_->journal.Count("CopyToOutput 5 0 16") == 0) core_->Frames().HandOffTexture(5);
  });
  EXPECT_TRUE(frame.Finishes()) << "no further pose comes";
}

TEST_F(OmbrelCoreTest, AnnouncesTheOutputsWithTheFirstFrameOfEachConnection) {
  ASSERT_TRUE(Stream());
  const auto first = companion_.Receive();
  ASSERT_TRUE(first.has_value());
  for (int i = 0; i < 3; ++i) HandOff();
  EXPECT_TRUE(HasReceivedAll());
  for (int i = 0; i < 3; ++i) {
    companion_.Offer();
    companion_.Disconnect();
    ASSERT_TRUE(companion_.Accept());
    ASSERT_TRUE(WaitForStreaming());
    const auto again = companion_.Receive();
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->payload, first->payload);
    HandOff();
    EXPECT_TRUE(HasReceivedAll());
  }
}

TEST_F(OmbrelCoreTest, TheAnnouncementHoldsWhatTheCompanionNeeds) {
  ASSERT_TRUE(Stream());
  const auto message = companion_.Receive();
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(message->type, 2U);
  ASSERT_EQ(message->payload.size(), 76U);
  const auto& payload = message->payload;
  const Bytes head = Bytes().U32(CurrentProcessId()).U32(0x55667788).U32(0xDDEEFF00);
  EXPECT_EQ(std::vector(payload.begin(), payload.begin() + 12), head.Get());
  EXPECT_TRUE(std::all_of(payload.begin() + 12, payload.begin() + 70,
                          [](std::byte byte) { return std::isalnum(std::to_integer<int>(byte)) != 0; }));
  EXPECT_EQ(std::vector(payload.begin() + 70, payload.end()), Bytes().Fill(2).U8(1).Fill(3).Get());
}

TEST_F(OmbrelCoreTest, AFrameUnderWayIsOverBeforeTheNextConnectionIsSetUp) {
  ASSERT_TRUE(Stream());
  Barrier drawing;
  renderer_->onLayer = [&](const LayerRecord&) { drawing.Pass(); };
  layers_.push_back({1, 2, &bounds_});
  Background frame([this] { HandOff(); });
  ASSERT_TRUE(drawing.WaitForVisitor());
  companion_.Offer();
  companion_.Disconnect();
  EXPECT_TRUE(frame.StaysBlocked());
  EXPECT_EQ(renderer_->journal.Count("CreateOutputTextures"), 0U);
  drawing.Open();
  EXPECT_TRUE(frame.Finishes());
  ASSERT_TRUE(companion_.Accept());
  ASSERT_TRUE(WaitForCall("CreateOutputTextures"));
  const Lines calls = Calls();
  EXPECT_LT(std::ranges::find(calls, "ClearOutput 0"), std::ranges::find(calls, "CreateOutputTextures"));
}

}  // namespace
}  // namespace ombrel::test
