#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "companion/head_model.h"
#include "companion/rotation.h"
#include "companion/tracking_update.h"
#include "frame_source.h"
#include "nlohmann/json.hpp"
#include "plain_client.h"
#include "program.h"

namespace bench {

using namespace companion;

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr float kLeft = std::numbers::pi_v<float> / 3;
constexpr Rgba kRed{200, 10, 20, 255}, kGreen{10, 200, 20, 255}, kBlue{10, 20, 200, 255};

PoseSlot SlotOf(const PoseMatrix& pose) {
  PoseSlot slot{};
  std::copy(pose.begin(), pose.end(), slot.begin());
  slot[15] = 1;
  return slot;
}

// Runs the companion in a process of its own, with the test handing it frames in the driver's place.
class FrameProgram : public testing::Test {
 protected:
  void Start(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--print-frames", "--summary", folder_.TextOf("summary.json")});
    program_.Start(TestArgument("companion"), arguments, folder_.At("output.txt"));
    Connect();
  }
  void Connect() {
    ASSERT_TRUE(client_.Open(OMBREL_PIPE_FROM_DRIVER, OMBREL_PIPE_TO_DRIVER, 20000)) << program_.Output();
    ASSERT_TRUE(source_.emplace().Create(64, 32));
    ASSERT_TRUE(client_.WriteMessage(EncodeFrameSharingInfo(source_->Info())));
  }
  void StartScript(const nlohmann::json& steps) {
    const std::string script = folder_.Write("script.json", nlohmann::json{{"steps", steps}}.dump());
    Start({"--script", script, "--out", folder_.TextOf("out"), "--require-named", "1"});
  }
  // The newest pose that the companion sent, at least one newer than before, as the runtime would render with it.
  PoseSlot NextPose() { return SlotOf(NextMatrix()); }
  PoseMatrix NextMatrix() {
    bool published = false;
    while (!published || client_.HasMore()) {
      const auto message = client_.Read();
      if (!message) break;
      published |= head_.Apply(EncodeMessage(message->type, message->payload));
    }
    return head_.Published();
  }
  bool LooksLeftWithin(int poses) {
    for (int i = 0; i < poses; ++i) {
      if (std::fabs(LookDirection(NextMatrix()).yaw - kLeft) < 1e-3F) return true;
    }
    return false;
  }
  // Hands over a frame and waits until the companion has read it.
  void PresentSlowly(const Rgba& left, const Rgba& right, const PoseSlot& slot) {
    ASSERT_TRUE(source_->Present(left, right, slot));
    ++presented_;
    for (int i = 0; i < 1000 && FramesRead() < presented_ && !program_.Wait(0); ++i) Sleep(5);
    ASSERT_EQ(FramesRead(), presented_) << program_.Output();
  }
  // Counts the lines of --print-frames.
  int FramesRead() const {
    static const std::regex read("companion: connection \\d+ frame ");
    const std::string output = program_.Output();
    return static_cast<int>(std::distance(std::sregex_iterator(output.begin(), output.end(), read), {}));
  }
  std::string ContactSheet() const {
    std::string text = folder_.Read("out/contact_sheet.txt");
    std::erase(text, '\r');
    return text;
  }
  nlohmann::json Summary() const { return nlohmann::json::parse(folder_.Read("summary.json")); }
  void ExpectExit(std::uint32_t code) { EXPECT_EQ(program_.Wait(), code) << program_.Output(); }

  ombrel::test::ScratchFolder folder_;
  Program program_;
  PlainClient client_;
  std::optional<FrameSource> source_;
  HeadModel head_;
  int presented_ = 0;
};

const PoseSlot kStanding = SlotOf(ToPoseMatrix(Quat{}, {0, 1.7F, 0}));

TEST_F(FrameProgram, ReadsEveryFrameFromTheTextureWhoseTurnItIs) {
  Start({"--frames", "3"});
  for (int i = 0; i < 3; ++i) PresentSlowly(kRed, kGreen, kStanding);
  ExpectExit(0);
  for (const char* line : {"frame 0 texture 0", "frame 1 texture 1", "frame 2 texture 0"}) {
    EXPECT_THAT(program_.Output(), HasSubstr(line));
  }
}

TEST_F(FrameProgram, DoesNotCountOneFrameTwice) {
  Start({"--until-disconnect"});
  PresentSlowly(kRed, kGreen, kStanding);
  PresentSlowly(kRed, kGreen, kStanding);
  client_.Close();  // it looks for a last frame for half a second
  ExpectExit(0);
  EXPECT_EQ(Summary().at("frames"), 2);
}

TEST_F(FrameProgram, KnowsThePosesThatItSentAndOthers) {
  Start({"--seconds", "30", "--frames", "12", "--require-matching", "5", "--pose-rate", "100"});
  PresentSlowly(kRed, kRed, kStanding);
  for (int i = 0; i < 9; ++i) PresentSlowly(kRed, kRed, NextPose());
  PoseSlot foreign = NextPose();
  foreign[3] += 0.01F;
  PresentSlowly(kRed, kRed, foreign);
  PresentSlowly(kRed, kRed, NextPose());
  ExpectExit(1);
  EXPECT_EQ(Summary().at("matching"), 11);
  EXPECT_EQ(Summary().at("mismatching"), 1);
  EXPECT_THAT(program_.Output(), HasSubstr("1 frames had a pose that was never sent"));
}

TEST_F(FrameProgram, CountsFramesThatHaveNoPoseBesideThem) {
  Start({"--seconds", "30", "--frames", "2"});
  PresentSlowly(kRed, kRed, PoseSlot{});
  PresentSlowly(kRed, kRed, PoseSlot{});
  ExpectExit(0);
  EXPECT_EQ(Summary().at("withoutPose"), 2);
}

TEST_F(FrameProgram, ReadsFreshFramesAfterAReconnect) {
  Start({"--frames", "2", "--seconds", "20"});
  PresentSlowly(kRed, kGreen, kStanding);
  client_.Close();
  Connect();
  PresentSlowly(kBlue, kGreen, kStanding);
  ExpectExit(0);
  EXPECT_THAT(program_.Output(), HasSubstr("connection 2 frame 0 texture 0"));
  EXPECT_EQ(Summary().at("connections"), 2);
}

TEST_F(FrameProgram, SavesPicturesAContactSheetAndItsLogs) {
  const std::string out = folder_.TextOf("out"), csv = folder_.TextOf("frames.csv"),
                    poses = folder_.TextOf("poses.csv");
  Start({"--out", out, "--save-every", "2", "--frames", "4", "--csv", csv, "--poses-csv", poses});
  for (int i = 0; i < 4; ++i) PresentSlowly(kRed, kGreen, NextPose());
  ExpectExit(0);
  for (const char* name : {"frame_000000.png", "frame_000002.png", "contact_sheet.png", "contact_sheet.txt"}) {
    EXPECT_TRUE(std::filesystem::exists(folder_.At("out/" + std::string(name)))) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.At("out/frame_000001.png")));
  std::ifstream frames(folder_.At("frames.csv")), sent(folder_.At("poses.csv"));
  const auto lines = [](std::istream& file) {
    return std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n');
  };
  EXPECT_EQ(lines(frames), 5);
  EXPECT_GT(lines(sent), 4);
}

nlohmann::json WaitFor(const std::string& what) { return {{"do", "wait"}, {"for", what}}; }

// Until the left eye shows green.
nlohmann::json LookLeft(int timeoutSeconds) {
  return {{"do", "look"},   {"label", "left"},          {"yaw", 60}, {"x", 3}, {"y", 5},
          {"rgba", kGreen}, {"timeout", timeoutSeconds}};
}

// As on a slow machine: the head has long been turned when the first frame comes, and that shows what was in front.
TEST_F(FrameProgram, TakesALookWhenThePictureShowsItAndHoldsTheHeadUntilThen) {
  StartScript({WaitFor("connection"), LookLeft(20)});
  ASSERT_TRUE(LooksLeftWithin(1000));
  PresentSlowly(kRed, kRed, PoseSlot{});
  EXPECT_TRUE(LooksLeftWithin(1));
  PresentSlowly(kGreen, kRed, PoseSlot{});
  ExpectExit(0);
  EXPECT_EQ(ContactSheet(), "left  frame 1  yaw +60  pitch +0\n");
}

TEST_F(FrameProgram, FailsWhenALookDoesNotCome) {
  StartScript({WaitFor("connection"), WaitFor("frames"), LookLeft(1)});
  PresentSlowly(kRed, kRed, PoseSlot{});
  ExpectExit(1);
  EXPECT_THAT(program_.Output(), HasSubstr("no picture \"left\": no frame came"));
  EXPECT_THAT(ContactSheet(), IsEmpty());
}

TEST_F(FrameProgram, SaysWhenTheTexturesCannotBeOpened) {
  Start({"--seconds", "20"});
  ASSERT_TRUE(client_.WriteMessage(EncodeFrameSharingInfo({1, {0x12345678, 0x12345679}, "nothing", false})));
  ExpectExit(1);
  EXPECT_THAT(program_.Output(), HasSubstr("textures cannot be opened"));
}

}  // namespace
}  // namespace bench
