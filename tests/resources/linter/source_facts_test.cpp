#include "source_facts.h"

#include <gmock/gmock.h>

#include "paths.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

SourceFacts Scan(const std::string& text) {
  SourceFacts facts;
  ScanText(text, facts);
  return facts;
}

TEST(SourceFactsTest, SettingsWithTheirTypes) {
  const SourceFacts facts = Scan(R"(f(ReadInt32Setting("b")); x = ReadBoolSetting("a", true);)");
  EXPECT_THAT(facts.settings, ElementsAre(Pair("a", SettingType::kBool), Pair("b", SettingType::kInt32)));
}

TEST(SourceFactsTest, ComponentsOfControllers) {
  const SourceFacts facts = Scan(R"({kGrip, "/input/grip/click"}, "/output/haptic", "/proximity", "/input")");
  EXPECT_THAT(facts.components, ElementsAre("/input/grip/click", "/output/haptic"));
}

TEST(SourceFactsTest, FilesAndTheInputProfileAmongThem) {
  const SourceFacts facts =
      Scan("\"{ombrel}/icons/a.png\" {vr::Prop_InputProfilePath_String,\n \"{ombrel}/input/p.json\"}");
  EXPECT_THAT(facts.references, ElementsAre("{ombrel}/icons/a.png", "{ombrel}/input/p.json"));
  EXPECT_EQ(facts.inputProfile, "{ombrel}/input/p.json");
}

TEST(SourceFactsTest, LogLinesWithoutTheirEnds) {
  const SourceFacts facts = Scan("Log(\"one %d \\n\", 1); Log(\n\"two\\n\"); SetLogSink(\"no\"); Blog(\"no\\n\");");
  EXPECT_THAT(facts.logFormats, ElementsAre("one %d", "two"));
}

// If the driver comes to say these things in another way, nothing must pass for want of anything to check.
TEST(SourceFactsTest, TheDriverHasThemAll) {
  const SourceFacts facts = ScanSources(SourceRoot());
  EXPECT_EQ(facts.settings.size(), 8U);
  EXPECT_EQ(facts.components.size(), 10U);
  EXPECT_EQ(facts.inputProfile, "{ombrel}/input/controller_profile.json");
  EXPECT_EQ(facts.settingsSection, "driver_ombrel");
  EXPECT_GT(facts.logFormats.size(), 20U);
}

}  // namespace
}  // namespace ombrel::test
