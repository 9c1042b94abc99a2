// What the scripts do where everything is in its place.
#include "install_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class RegisterTest : public InstallTest {};

TEST_F(RegisterTest, InstallAddsTheFolderAndNothingElse) {
  const Outcome outcome = Run("install.cmd");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}));
  EXPECT_THAT(outcome.output, HasSubstr("SteamVR now knows the Ombrel driver"));
}

TEST_F(RegisterTest, InstallLeavesOtherDriversAlone) {
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_THAT(Drivers(), ElementsAre("C:\\one", "C:\\runtime\\two", TextOf(driver)));
}

TEST_F(RegisterTest, InstallTwiceNamesTheSameFolderTwice) {
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}, Call{"adddriver", TextOf(driver)}));
  EXPECT_THAT(Drivers(), ElementsAre("C:\\one", "C:\\runtime\\two", TextOf(driver)));
}

TEST_F(RegisterTest, InstallNamesTheSameFolderFromWhereverItIsCalled) {
  EXPECT_EQ(RunIn(At(driver), "install.cmd /quiet").exitCode, 0);
  EXPECT_EQ(RunIn(At(driver + "/bin"), "..\\install.cmd /quiet").exitCode, 0);
  EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}, Call{"adddriver", TextOf(driver)}));
}

TEST_F(RegisterTest, InstallTakesAnotherCopyOutWhenToldTo) {
  PutDriver("Old/ombrel");
  const std::string old = TextOf(driver);
  Write(driver + "/driver.vrdrivermanifest", R"({ "name" : "ombrel" })");
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  PutDriver("New/ombrel");
  const Outcome outcome = Run("install.cmd");
  EXPECT_EQ(outcome.exitCode, 7) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr(old));
  EXPECT_EQ(Run("install.cmd", " --replace /quiet").exitCode, 0);
  EXPECT_THAT(Drivers(), ElementsAre("C:\\one", "C:\\runtime\\two", TextOf(driver)));
}

TEST_F(RegisterTest, UninstallLeavesTheRegistryAsItWas) {
  const nlohmann::json before = Registry();
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_NE(Registry(), before);
  const Outcome outcome = Run("uninstall.cmd");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_EQ(Registry(), before);
  EXPECT_THAT(outcome.output, HasSubstr("SteamVR no longer knows the Ombrel driver"));
}

TEST_F(RegisterTest, UninstallWithoutInstallChangesNothing) {
  const nlohmann::json before = Registry();
  EXPECT_EQ(Run("uninstall.cmd").exitCode, 0);
  EXPECT_THAT(Calls(), ElementsAre(Call{"removedriver", TextOf(driver)}));
  EXPECT_EQ(Registry(), before);
}

TEST_F(RegisterTest, UninstallWorksForAFolderThatLostItsLibrary) {
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  Remove(driver + "/bin/win64/driver_ombrel.dll");
  EXPECT_EQ(Run("uninstall.cmd").exitCode, 0);
  EXPECT_THAT(Drivers(), ElementsAre("C:\\one", "C:\\runtime\\two"));
}

TEST_F(RegisterTest, NothingIsWrittenBesideTheScripts) {
  const std::vector<std::string> before = Files();
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_EQ(Run("uninstall.cmd").exitCode, 0);
  EXPECT_EQ(Files(), before);
}

TEST_F(RegisterTest, AKeyIsWaitedForUnlessQuiet) {
  const std::string wait = "any key";
  EXPECT_THAT(Run("install.cmd", "").output, HasSubstr(wait));
  EXPECT_THAT(Run("uninstall.cmd", "").output, HasSubstr(wait));
  EXPECT_THAT(Run("install.cmd", " /quiet").output, Not(HasSubstr(wait)));
  EXPECT_THAT(Run("uninstall.cmd", " /QUIET").output, Not(HasSubstr(wait)));
}

TEST_F(RegisterTest, TheFolderMayHaveBlanksBracketsAmpersandsAndCarets) {
  for (const char* folder : {"a b (c) & d/ombrel", "e^f, g; h=i/ombrel", "j! k!/ombrel"}) {
    PutDriver(folder);
    const Outcome outcome = Run("install.cmd");
    EXPECT_EQ(outcome.exitCode, 0) << folder << outcome.output;
    EXPECT_EQ(Calls().back(), (Call{"adddriver", TextOf(folder)}));
    EXPECT_EQ(Run("uninstall.cmd").exitCode, 0) << folder;
    EXPECT_EQ(Calls().back(), (Call{"removedriver", TextOf(folder)}));
  }
}

TEST_F(RegisterTest, TheFolderMayHaveUmlauts) {
  PutDriver("M\u00fcller \u00df \u0416/ombrel");
  const Outcome outcome = Run("install.cmd");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}));
}

}  // namespace
}  // namespace ombrel::test
