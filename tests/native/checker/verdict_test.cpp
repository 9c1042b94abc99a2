#include "checker/verdict.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "made_up_session.h"

namespace checker::test {
namespace {

using testing::HasSubstr;

TEST(VerdictTest, SaysOfAGoodSessionThatNoRuleWasBroken) {
  const Verdict verdict = VerdictOf(MadeUpSession().Build(), Watched::kBothSides);
  EXPECT_TRUE(verdict.IsClean());
  EXPECT_TRUE(verdict.HasFrames());
  EXPECT_THAT(InText(verdict), testing::StartsWith("checker: no rule was broken\n"));
}

TEST(VerdictTest, GivesTheFiguresOfASession) {
  const Figures figures = VerdictOf(MadeUpSession().Build(), Watched::kBothSides).figures;
  EXPECT_EQ(figures.connections, 1U);
  EXPECT_NEAR(figures.seconds, 2.75, 0.001);
  EXPECT_EQ(figures.poses, 270U);
  EXPECT_NEAR(figures.PosesPerSecond(), 270 / 2.75, 0.1);
  EXPECT_EQ(figures.framesHandedOver, 133U);
  EXPECT_EQ(figures.framesRead, 133U);
  EXPECT_THAT(figures.handOffs, testing::Each(testing::DoubleNear(2, 0.01)));
  EXPECT_THAT(figures.holds, testing::Each(testing::DoubleNear(2, 0.01)));
  EXPECT_THAT(figures.readings, testing::ElementsAre(testing::DoubleNear(1, 0.01)));
}

TEST(VerdictTest, NamesRuleTimeEvidenceAndRemedy) {
  MadeUpSession session;
  session.Send(1000, FrameRate(0));
  const Verdict verdict = VerdictOf(session.Build(), Watched::kBothSides);
  const std::string text = InText(verdict);
  EXPECT_THAT(text, HasSubstr("1 rule was broken"));
  EXPECT_THAT(text,
              HasSubstr("P12  Never ask for a frame rate of 0\n    at 1.000 s: a FramerateUpdate of 0\n    -> Leave"));
  const auto json = InJson(verdict, session.Build().begin);
  EXPECT_FALSE(json["clean"].get<bool>());
  EXPECT_EQ(json["violations"][0]["rule"], "P12");
  EXPECT_NEAR(json["violations"][0]["seconds"].get<double>(), 1, 0.001);
  EXPECT_EQ(json["figures"]["poses"], 270);
}

TEST(VerdictTest, SaysWhenThereWasNoConnectionOrNoFrame) {
  MadeUpSession nothing(MadeUpSession::Empty{});
  EXPECT_THAT(InText(VerdictOf(nothing.Build(), Watched::kBothSides)), HasSubstr("no driver was connected"));
  nothing.Connect(0);
  const Verdict verdict = VerdictOf(nothing.Build(), Watched::kBothSides);
  EXPECT_FALSE(verdict.HasFrames());
  EXPECT_THAT(InText(verdict), HasSubstr("no rule was broken, but no frame was read"));
}

// What the driver's side shows of a session.
class DriverOnlyTest : public testing::Test {
 protected:
  [[nodiscard]] Verdict Look() const { return VerdictOf(session.Build(), Watched::kDriver); }

  MadeUpSession session;
};

TEST_F(DriverOnlyTest, SaysWhichRulesAreNotWatchedAndBreaksNone) {
  session.Acquire(Side::kCompanion, 0, 1000).key = 1;
  session.Read(0, 1001);
  const Verdict verdict = Look();
  EXPECT_TRUE(verdict.IsClean());
  EXPECT_THAT(InText(verdict), HasSubstr("not watched, on the companion's side: P15, P16, P17, P18, P19, P20\n"));
  const auto json = InJson(verdict, 0);
  EXPECT_EQ(json["notWatched"], nlohmann::json({"P15", "P16", "P17", "P18", "P19", "P20"}));
  EXPECT_FALSE(json["bothSidesWatched"].get<bool>());
}

TEST_F(DriverOnlyTest, StillNamesRulesThatTheDriversSideShows) {
  session.Send(1000, FrameRate(0));
  EXPECT_THAT(InText(Look()), HasSubstr("1 rule was broken"));
}

TEST_F(DriverOnlyTest, TakesAnAnnouncementForFramesWhereNothingShowsMore) {
  session.Remove(EventKind::kReleased);
  const Verdict verdict = Look();
  EXPECT_TRUE(verdict.HasFrames());
  EXPECT_THAT(InText(verdict), HasSubstr("no rule was broken; frames were announced, and nothing shows whether"));
  EXPECT_EQ(InJson(verdict, 0)["framesShownBy"], "announcement");
  EXPECT_EQ(ForPage(verdict)["verdict"], "unknown");
}

TEST_F(DriverOnlyTest, KnowsFramesByATextureThatTheDriverFoundHeld) {
  session.Acquire(Side::kDriver, 0, 1003, 0x102).timeoutMs = 0;
  const Verdict verdict = Look();
  EXPECT_THAT(InText(verdict), HasSubstr("no rule was broken; frames were taken: the driver found a texture held 1"));
  EXPECT_EQ(InJson(verdict, 0)["framesShownBy"], "held textures");
  EXPECT_EQ(ForPage(verdict)["verdict"], "good");
}

TEST_F(DriverOnlyTest, SaysThatNoFrameWasAnnounced) {
  session.CutOffAt(290);
  EXPECT_FALSE(Look().HasFrames());
  EXPECT_THAT(InText(Look()), HasSubstr("but no frame was announced"));
  EXPECT_EQ(InJson(Look(), 0)["framesShownBy"], nullptr);
}

// "| P7 | Send finite numbers |": each rule, in its order, with the words that the checker has for it.
TEST(RulesTest, StandOnTheProtocolsPage) {
  const std::string option = "--document=";
  std::string page;
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (!argument.starts_with(option)) continue;
    std::ifstream stream(argument.substr(option.size()));
    page.assign(std::istreambuf_iterator<char>(stream), {});
  }
  std::size_t position = 0;
  int number = 0;
  for (const RuleText& rule : Rules()) {
    EXPECT_EQ(static_cast<int>(rule.rule), ++number);
    const std::string row = "| P" + std::to_string(number) + " | " + rule.title + " |";
    position = page.find(row, position);
    ASSERT_NE(position, std::string::npos) << "the page has no row\n" << row;
  }
  EXPECT_EQ(page.find("| P" + std::to_string(number + 1) + " |"), std::string::npos);
}

}  // namespace
}  // namespace checker::test
