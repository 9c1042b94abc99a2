// The table of texts, and reports made with it.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "doctor/report.h"
#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

int Places(const char* text) { return static_cast<int>(std::count(text, text + std::strlen(text), '{')); }

TEST(Texts, SayTheSameInBothLanguages) {
  for (const FindingText& text : FindingTexts()) {
    for (const Text& each : {text.what, text.todo}) {
      EXPECT_GT(std::strlen(each.english), 10U) << text.id;
      EXPECT_STRNE(each.english, each.german) << text.id;
      EXPECT_EQ(Places(each.english), Places(each.german)) << text.id;
    }
  }
}

TEST(Texts, TellHowBadEachFindingIs) {
  EXPECT_EQ(TextOf("companion_not_running").severity, Severity::kProblem);
  EXPECT_EQ(TextOf("adapters_several").severity, Severity::kHint);
  EXPECT_THROW((void)TextOf("unheard_of"), std::logic_error);
}

TEST(Texts, AreFilledWithTheirValues) {
  EXPECT_EQ(Filled("{1} of {0}, {x} {", {"a", "b"}), "b of a, {x} {");
  EXPECT_THROW((void)Filled("{0}", {}), std::out_of_range);
}

class ReportTest : public testing::Test {
 protected:
  [[nodiscard]] Report Made() { return MakeReport(Look(machine)); }
  [[nodiscard]] nlohmann::ordered_json Json(Language language = Language::kEnglish) {
    return AsJson(Made(), language, Anonymizer(machine.account));
  }

  FakeMachine machine;
};

TEST_F(ReportTest, IsWellOnASoundComputer) {
  EXPECT_TRUE(Made().IsWell());
  EXPECT_THAT(AsText(Made(), Language::kEnglish), HasSubstr("Nothing was found"));
  EXPECT_THAT(AsText(Made(), Language::kGerman), HasSubstr("Nichts gefunden"));
  EXPECT_EQ(Json()["result"], "well");
}

TEST_F(ReportTest, IsWellWithHintsAlone) {
  machine.adapters.push_back({"Other GPU", "0:3", false, false});
  EXPECT_TRUE(Made().IsWell());
  EXPECT_EQ(Made().findings.size(), 1U);
}

TEST_F(ReportTest, IsNotWellWithAWarningAlone) {
  machine.WriteSettings(R"("driver_ombrel" : { "hmdMode" : 1 })");
  EXPECT_FALSE(Made().IsWell());
  EXPECT_EQ(Json()["result"], "findings");
}

TEST_F(ReportTest, SaysWhatAndWhatToDoOnALineEach) {
  machine.processes[2].executableName = "ombrel.exe";
  EXPECT_THAT(
      AsText(Made(), Language::kEnglish),
      AllOf(HasSubstr("PROBLEM:  The companion program runs as \"ombrel.exe\""),
            HasSubstr("\n          Close it, rename it to Ombrel.exe"), HasSubstr("Problems: 1. Warnings: 0.")));
  EXPECT_THAT(AsText(Made(), Language::kGerman),
              AllOf(HasSubstr("FEHLER:   Das Begleitprogramm läuft als \"ombrel.exe\""), HasSubstr("Fehler: 1.")));
}

TEST_F(ReportTest, ShowsWhatWasLookedAt) {
  machine.pipes.reset();
  EXPECT_THAT(AsText(Made(), Language::kEnglish),
              AllOf(HasSubstr("Folder of this driver: C:\\VR\\ombrel\n"), HasSubstr("Its connection: cannot be listed"),
                    HasSubstr("\n    Some GPU (0:1)\n"), HasSubstr("The headset was taken then: yes")));
  EXPECT_THAT(AsText(Made(), Language::kGerman), HasSubstr("SteamVR läuft: nein"));
}

TEST_F(ReportTest, HasForProgramsIdentifiersThatAreNoText) {
  machine.processes[2].executableName = "ombrel.exe";
  const auto report = Json(Language::kGerman);
  EXPECT_EQ(report["schema"], 1);
  ASSERT_EQ(report["findings"].size(), 1U);
  EXPECT_EQ(report["findings"][0]["id"], "companion_other_spelling");
  EXPECT_EQ(report["findings"][0]["severity"], "problem");
  EXPECT_THAT(report["findings"][0]["values"], ElementsAre("ombrel.exe"));
  EXPECT_THAT(report["findings"][0]["what"].get<std::string>(), HasSubstr("läuft als \"ombrel.exe\""));
  EXPECT_THAT(report["facts"]["companionRunning"], ElementsAre("no"));
}

TEST_F(ReportTest, HasForProgramsAllFacts) {
  std::vector<std::string> keys;
  const auto report = Json();
  for (const auto& [key, value] : report["facts"].items()) keys.push_back(key);
  EXPECT_THAT(
      keys, ElementsAre("folder", "library", "drivers", "runtime", "runtimeRunning", "companionRunning", "pipes", "log",
                        "logHeadset", "adapters", "adapterUsed", "administrator", "crashDumps"));
}

TEST_F(ReportTest, NamesNobodyToPrograms) {
  machine.WriteRegistry({}, {R"(C:\Users\JOERG\drivers\ombrel)"});
  EXPECT_THAT(Json().dump(), AllOf(Not(HasSubstr("JOERG")), HasSubstr("<user>")));
}

}  // namespace
}  // namespace ombrel::doctor::test
