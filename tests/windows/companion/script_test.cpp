#include <stdexcept>

#include "script.h"

#include <gtest/gtest.h>

#include "companion/controller_record.h"
#include "controller_step.h"

namespace bench {

using namespace companion;

namespace {

TEST(Script, ReadsItsStepsInOrder) {
  const Script script =
      ParseScript(R"({"steps": [{"do": "wait", "for": "connection"}, {"do": "sleep", "seconds": 2}]})");
  ASSERT_EQ(script.steps.size(), 2U);
  EXPECT_EQ(script.steps[1].at("do"), "sleep");
}

TEST(Script, AnUnknownStepIsFoundBeforeItIsPlayed) {
  EXPECT_THROW(ParseScript(R"({"steps": [{"do": "dance"}]})"), std::runtime_error);
}

TEST(Script, AnUnknownArgumentIsFoundBeforeItIsPlayed) {
  EXPECT_THROW(ParseScript(R"({"steps": [{"do": "sleep", "second": 2}]})"), std::runtime_error);
}

TEST(Script, StepsInsideStepsAreLookedAtAsWell) {
  EXPECT_THROW(ParseScript(R"({"steps": [{"do": "repeat", "steps": [{"do": "dance"}]}]})"), std::runtime_error);
  EXPECT_THROW(ParseScript(R"({"steps": [{"do": "together", "tracks": [[{"do": "dance"}]]}]})"), std::runtime_error);
}

TEST(Script, AControllerStepBecomesARecord) {
  const ControllerRecord record = ParseController(nlohmann::json::parse(
      R"({"do": "controller", "id": 3, "pressed": ["grip", "trigger"], "touched": ["trackpad"],
          "trackpad": [0.5, -0.25], "trigger": 0.75, "position": [1, 2, 3]})"));
  EXPECT_EQ(record.controllerId, 3U);
  EXPECT_EQ(record.pressedButtons, (1ULL << 2) | (1ULL << 33));
  EXPECT_EQ(record.touchedButtons, 1ULL << 32);
  EXPECT_EQ(record.axes[0].y, -0.25F);
  EXPECT_EQ(record.axes[1].x, 0.75F);
  EXPECT_EQ(record.pose[11], 3.0F);
}

TEST(Script, AnUnknownButtonIsAnError) {
  EXPECT_THROW(ParseController(nlohmann::json::parse(R"({"id": 3, "pressed": ["nose"]})")), std::runtime_error);
}

}  // namespace
}  // namespace bench
