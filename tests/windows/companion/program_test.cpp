#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "companion/messages.h"
#include "companion/tracking_update.h"
#include "nlohmann/json.hpp"
#include "plain_client.h"
#include "program.h"

namespace bench {

using namespace companion;

namespace {

using testing::HasSubstr;

// Runs the companion without frames, with the test in the driver's place.
class CompanionProgram : public testing::Test {
 protected:
  void Start(std::vector<std::string> arguments) {
    arguments.push_back("--no-frames");
    program_.Start(TestArgument("companion"), arguments, folder_.At("output.txt"));
  }
  void Play(const std::string& steps, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.end(), {"--script", folder_.Write("script.json", "{\"steps\": [" + steps + "]}")});
    Start(std::move(arguments));
    ASSERT_TRUE(client_.Open(OMBREL_PIPE_FROM_DRIVER, OMBREL_PIPE_TO_DRIVER, 20000)) << program_.Output();
  }
  void ExpectExit(std::uint32_t code) { EXPECT_EQ(program_.Wait(), code) << program_.Output(); }

  ombrel::test::ScratchFolder folder_;
  Program program_;
  PlainClient client_;
};

constexpr const char* kConnected = R"({"do": "wait", "for": "connection"})";

TEST_F(CompanionProgram, EndsWithThreeWhenNoDriverComes) {
  Start({"--connect-timeout", "0.3"});
  ExpectExit(3);
  EXPECT_THAT(program_.Output(), HasSubstr("no driver came"));
}

TEST_F(CompanionProgram, EndsWithTwoOnWrongOptions) {
  Start({"--pose-format", "77"});
  ExpectExit(2);
}

TEST_F(CompanionProgram, TurnsTheHeadAtTheAskedRate) {
  Play(std::string(kConnected) + R"(, {"do": "motion", "seconds": 2, "rate": 50, "format": 4, "yaw": 60})");
  int poses = 0;
  float farthest = 0;
  while (const auto message = client_.Read()) {
    const auto update = DecodeTracking(message->payload);
    ASSERT_TRUE(update && update->Is(PoseFormat::QuaternionAndPosition));
    farthest = std::max(farthest, LookDirection(ToPoseMatrix(update->rotation, {})).yaw);
    ++poses;
  }
  EXPECT_NEAR(poses, 101, 1);
  EXPECT_NEAR(farthest, 60 * 3.14159F / 180, 0.01F);
  ExpectExit(0);
}

TEST_F(CompanionProgram, WaitsForAHapticPulse) {
  Play(std::string(kConnected) + R"(, {"do": "expect-haptic", "controller": 3, "durationMicroseconds": 34464})");
  ASSERT_TRUE(client_.WriteMessage(EncodeHapticPulse({3, 1, 1})));
  ASSERT_TRUE(client_.WriteMessage(EncodeHapticPulse({3, 1, 34464})));
  ExpectExit(0);
}

TEST_F(CompanionProgram, FailsWhenAHapticPulseDoesNotCome) {
  Play(std::string(kConnected) +
       R"(, {"do": "expect-haptic", "controller": 3, "durationMicroseconds": 5, "timeout": 0.2})");
  ASSERT_TRUE(client_.WriteMessage(EncodeHapticPulse({3, 1, 4})));
  ExpectExit(1);
  EXPECT_THAT(program_.Output(), HasSubstr("no haptic pulse of 5 us for controller 3"));
}

TEST_F(CompanionProgram, PlaysTracksSideBySide) {
  Play(std::string(kConnected) + R"(, {"do": "together", "tracks": [
       [{"do": "motion", "kind": "hold", "seconds": 1, "rate": 20}],
       [{"do": "controllers", "seconds": 1, "rate": 20}]]})");
  int poses = 0, records = 0;
  while (const auto message = client_.Read()) ++(message->Is(MessageType::TrackingUpdate) ? poses : records);
  EXPECT_NEAR(poses, 21, 1);
  EXPECT_NEAR(records, 42, 2);
  ExpectExit(0);
}

TEST_F(CompanionProgram, FailsOnAMessageThatNoDriverSends) {
  Play(std::string(kConnected) + R"(, {"do": "sleep", "seconds": 20})");
  ASSERT_TRUE(client_.WriteMessage(EncodeRecenterRequest()));
  ExpectExit(1);
  EXPECT_THAT(program_.Output(), HasSubstr("type 8"));
}

TEST_F(CompanionProgram, FailsWithoutTheRequiredFramesAndSaysSoInItsSummary) {
  const std::string summary = folder_.TextOf("summary.json");
  Play(kConnected, {"--require-frames", "1", "--summary", summary});
  ExpectExit(1);
  std::ifstream file(summary);
  const auto json = nlohmann::json::parse(file);
  EXPECT_EQ(json.at("ok"), false);
  EXPECT_EQ(json.at("connections"), 1);
  EXPECT_EQ(json.at("frames"), 0);
}

TEST_F(CompanionProgram, AsksForAFrameRateAtEveryConnection) {
  Start({"--framerate", "72", "--seconds", "20", "--pose-rate", "1"});
  for (int connection = 0; connection < 2; ++connection) {
    ASSERT_TRUE(client_.Open(OMBREL_PIPE_FROM_DRIVER, OMBREL_PIPE_TO_DRIVER, 20000));
    bool asked = false;
    while (!asked) {
      const auto message = client_.Read();
      ASSERT_TRUE(message);
      asked = message->Is(MessageType::FramerateUpdate) && DecodeFramerateUpdate(message->payload) == 72U;
    }
    client_.Close();
  }
}

}  // namespace
}  // namespace bench
