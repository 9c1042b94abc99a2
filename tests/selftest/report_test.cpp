#include "report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "progress.h"

namespace ombrel::selftest {
namespace {

using testing::HasSubstr;
using testing::Not;

Verdict Of(Result result) { return {"group", "name", result, "expected", "found", "meaning"}; }

TEST(ReportTest, OneBadVerdictMakesAllBad) {
  Report report;
  report.Add({Of(Result::kGood), Of(Result::kBad), Of(Result::kUnknown)});
  EXPECT_EQ(report.Overall(), Result::kBad);
  EXPECT_EQ(report.AsJson("a", "b").at("verdict"), "bad");
}

TEST(ReportTest, WhatIsUnknownIsNotGood) {
  Report report;
  EXPECT_EQ(report.Overall(), Result::kUnknown);
  report.Add({Of(Result::kGood)});
  EXPECT_EQ(report.Overall(), Result::kGood);
  report.Add({Of(Result::kUnknown)});
  EXPECT_EQ(report.Overall(), Result::kUnknown);
}

TEST(ReportTest, NamesAreTakenOutOfWhatComesFromTheMachineAlone) {
  Report report;
  report.AddFact("good", "good");
  report.Add({{"good", "good", Result::kGood, "good", "good", "good"}});
  report.AddSection(
      {{"title", "good"}, {"tables", Json::array({Table("good", {"good"}, Json::array({Json::array({"good", 3})}))})}});
  Json json = report.AsJson("good", "good");
  CleanTexts(json, [](const std::string&) { return std::string("clean"); });
  EXPECT_EQ(json.at("subtitle"), "clean");
  EXPECT_EQ(json.at("verdict"), "good");
  EXPECT_EQ(json.at("facts")[0].dump(), R"({"name":"good","value":"clean"})");
  EXPECT_EQ(json.at("verdicts")[0].at("found"), "clean");
  EXPECT_EQ(json.at("verdicts")[0].at("result"), "good");
  EXPECT_EQ(json.at("sections")[0].at("tables")[0].at("rows").dump(), R"([["clean",3]])");
}

TEST(ReportTest, PercentilesAreMedianNinetyAndNinetyNine) {
  std::vector<double> samples;
  for (int i = 1; i <= 100; ++i) samples.push_back(i);
  EXPECT_EQ(PercentilesText(samples), "50.00 / 90.00 / 99.00");
  EXPECT_EQ(PercentilesText({}), "none");
}

TEST(ReportTest, TheProgressBarIsAsFullAsTheShare) {
  EXPECT_EQ(ProgressBar(0.25, "a step"), "[#####               ]   25%  a step");
  EXPECT_THAT(ProgressBar(0, ""), Not(HasSubstr("#")));
  EXPECT_THAT(ProgressBar(1.5, ""), HasSubstr("[####################]  100%"));
}

}  // namespace
}  // namespace ombrel::selftest
