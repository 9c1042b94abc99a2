#include "faults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace ombrel::selftest {
namespace {

using testing::HasSubstr;

const std::vector<FaultPlan> kPlayed{{"one", "The one"}, {"two", "The two"}};

Json Played(const char* name, const char* result) {
  return {{"name", name}, {"result", result}, {"failures", {"frames come", "poses arrive"}}};
}

TEST(FaultsTest, AScenarioThatPassesIsGood) {
  const Json report{{"scenarios", {Played("one", "pass"), Played("two", "pass")}}};
  for (const Verdict& verdict : JudgeFaults(kPlayed, report, "")) EXPECT_EQ(verdict.result, Result::kGood);
}

TEST(FaultsTest, AScenarioThatFailsSaysWhat) {
  const Json report{{"scenarios", {Played("one", "pass"), Played("two", "fail")}}};
  const auto verdicts = JudgeFaults(kPlayed, report, "");
  EXPECT_EQ(verdicts[1].result, Result::kBad);
  EXPECT_EQ(verdicts[1].found, "not: frames come; poses arrive");
}

TEST(FaultsTest, AScenarioThatWasNotComeToIsBad) {
  const Json report{{"scenarios", {Played("one", "pass")}}};
  EXPECT_THAT(JudgeFaults(kPlayed, report, "exit code 3")[1].found, HasSubstr("exit code 3"));
  for (const Verdict& verdict : JudgeFaults(kPlayed, nullptr, "")) EXPECT_EQ(verdict.result, Result::kBad);
}

TEST(FaultsTest, AScenarioThatIsSkippedIsUnknown) {
  const Json report{{"scenarios", {Played("one", "pass"), {{"name", "two"}, {"result", "skip"}}}}};
  EXPECT_EQ(JudgeFaults(kPlayed, report, "")[1].result, Result::kUnknown);
}

// Nobody's machine loses its graphics device to this, nothing random is sent, and no driver is asked to end.
TEST(FaultsTest, OnlyScenariosThatAreSafeAnywhereArePlayed) {
  const std::set<std::string> safe{
      "killed_between_pipes",     "killed_in_header", "killed_in_payload", "killed_holding_texture",
      "killed_while_write_waits", "silent_companion", "restarts",          "not_reading",
      "growth_reconnects"};
  for (const auto& faults : {Faults(), FaultsInBrief()}) {
    for (const FaultPlan& fault : faults) EXPECT_TRUE(safe.contains(fault.scenario)) << fault.scenario;
  }
}

TEST(FaultsTest, WhatIsHeldBeforeAndAfterIsInATable) {
  Json played = Played("one", "pass");
  played["counts"] = Json::array({{{"what", "handles"}, {"before", 100}, {"after", 101}}});
  const Json section = SectionOfFaults({{"scenarios", Json::array({played})}});
  EXPECT_EQ(section.at("tables")[1].at("rows").dump(), R"([["one","handles",100,101]])");
}

}  // namespace
}  // namespace ombrel::selftest
