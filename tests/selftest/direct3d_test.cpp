#include "direct3d.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ombrel::selftest {
namespace {

// Answers as a Direct3D gives them that shares textures.
Direct3DAnswers SoundDirect3D() {
  Direct3DAnswers answers;
  answers.sharing = "own";
  answers.featureLevel = 0xb000;
  answers.rules = {{"first", 0},
                   {"second_acquire", 0x887A0001},
                   {"held", kTimedOut},
                   {"foreign_release", 0x80004005},
                   {"wrong_key", kTimedOut},
                   {"released_key", 0},
                   {"after_process", 0},
                   {"held_by_process", kTimedOut},
                   {"abandoned", kAbandoned}};
  answers.formats = {{"A", 0, 0, 0, true}, {"B", 0, 0, 0, false}};
  answers.pictures = {{"levels", 1, 1}};
  return answers;
}

// The names of the verdicts that are not good.
std::vector<std::string> Wrong(const Direct3DAnswers& answers, Result result, bool canShare = true) {
  std::vector<std::string> names;
  for (const Verdict& verdict : Judge(answers, canShare)) {
    if (verdict.result == result) names.push_back(verdict.name);
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(Direct3DTest, NothingIsWrongWithASoundOne) {
  EXPECT_EQ(Wrong(SoundDirect3D(), Result::kBad), Names());
  EXPECT_EQ(Wrong(SoundDirect3D(), Result::kUnknown), Names());
}

TEST(Direct3DTest, EachRuleOfTheKeyedMutexThatDoesNotHoldIsBad) {
  for (const KeyedMutexRule& rule : KeyedMutexRules()) {
    Direct3DAnswers answers = SoundDirect3D();
    const auto answer = std::ranges::find(answers.rules, rule.id, &RuleAnswer::rule);
    ASSERT_NE(answer, answers.rules.end()) << rule.id;
    answer->code = answer->code == 0 ? kTimedOut : 0;
    EXPECT_EQ(Wrong(answers, Result::kBad), Names{rule.name});
  }
}

TEST(Direct3DTest, ATimeOutIsNoAbandonedHold) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.rules.back().code = kTimedOut;
  EXPECT_EQ(Wrong(answers, Result::kBad).size(), 1U);
}

TEST(Direct3DTest, AQuestionThatWasNotComeToIsBad) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.rules.pop_back();
  answers.failure = "it crashed";
  EXPECT_EQ(Wrong(answers, Result::kBad),
            (Names{"All questions are asked", "Keyed mutex: a holder whose process ended"}));
}

TEST(Direct3DTest, StandInSharingIsBadWhereItShouldBeTheMachines) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.sharing = "stand-in";
  EXPECT_EQ(Wrong(answers, Result::kBad), Names{"Shared textures"});
  EXPECT_EQ(Wrong(answers, Result::kUnknown, false), Names{"Shared textures"});
  answers.isForced = true;
  EXPECT_EQ(Wrong(answers, Result::kUnknown), Names{"Shared textures"});
}

TEST(Direct3DTest, AnOldFeatureLevelIsBad) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.featureLevel = 0x9300;
  EXPECT_EQ(Wrong(answers, Result::kBad), Names{"Feature level"});
}

TEST(Direct3DTest, AFormatIsBadOnlyWhereTheDriverCannotDoWithoutIt) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.formats[1].opened = 0x80070057;
  EXPECT_EQ(Wrong(answers, Result::kUnknown), Names{"Formats"});
  answers.formats[0].drawn = 0x80070057;
  EXPECT_EQ(Wrong(answers, Result::kBad), Names{"Formats"});
}

TEST(Direct3DTest, APictureBeyondItsToleranceIsBad) {
  Direct3DAnswers answers = SoundDirect3D();
  answers.pictures[0].difference = 2;
  EXPECT_EQ(Wrong(answers, Result::kBad), Names{"Picture: levels"});
  answers.pictures.clear();
  EXPECT_EQ(Wrong(answers, Result::kBad), Names{"Pictures"});
}

TEST(Direct3DTest, AnswersComeBackFromTheirFile) {
  const Direct3DAnswers answers = SoundDirect3D();
  EXPECT_EQ(AsJson(ReadDirect3D(AsJson(answers))), AsJson(answers));
}

}  // namespace
}  // namespace ombrel::selftest
