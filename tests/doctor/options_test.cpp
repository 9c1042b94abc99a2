// The doctor's command line.
#include <gmock/gmock.h>

#include "doctor/options.h"

namespace ombrel::doctor::test {
namespace {

TEST(CommandLine, ChecksWhenItSaysNothing) {
  const auto options = ParseOptions({});
  ASSERT_TRUE(options);
  EXPECT_EQ(options->task, Task::kCheck);
  EXPECT_FALSE(options->language);
  EXPECT_FALSE(options->pause);
}

TEST(CommandLine, TakesAllThatACheckHas) {
  const auto options = ParseOptions({"--json", "--bundle", "a b", "--language", "de", "--no-pause"});
  ASSERT_TRUE(options);
  EXPECT_TRUE(options->asJson);
  EXPECT_EQ(options->bundleFolder, "a b");
  EXPECT_EQ(options->language, Language::kGerman);
  EXPECT_EQ(options->pause, false);
}

TEST(CommandLine, InstallsAndUninstallsQuietly) {
  EXPECT_EQ(ParseOptions({"--pause", "--install", "/QUIET"})->pause, false);
  EXPECT_EQ(ParseOptions({"--install", "--replace"})->task, Task::kInstall);
  EXPECT_TRUE(ParseOptions({"--install", "--replace"})->replace);
  EXPECT_EQ(ParseOptions({"--pause", "--uninstall"})->task, Task::kUninstall);
  EXPECT_EQ(ParseOptions({"--pause", "--uninstall"})->pause, true);
}

TEST(CommandLine, IsRefusedWhenItIsNotUnderstood) {
  using Arguments = std::vector<std::string>;
  for (const Arguments& arguments : {Arguments{"--unheard-of"},
                                     {"--bundle"},
                                     {"--bundle", ""},
                                     {"--language", "fr"},
                                     {"--replace"},
                                     {"--uninstall", "--replace"},
                                     {"--install", "--json"},
                                     {"--install", "--bundle", "x"},
                                     {"C:\\VR"}}) {
    EXPECT_FALSE(ParseOptions(arguments)) << testing::PrintToString(arguments);
  }
}

TEST(CommandLine, HasAUsageForEachOption) {
  for (const char* option :
       {"--json", "--bundle", "--language", "--install", "--replace", "--uninstall", "--no-pause"}) {
    EXPECT_THAT(Usage(), testing::HasSubstr(option));
  }
}

}  // namespace
}  // namespace ombrel::doctor::test
