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

TEST_F(RegisterTest, InstallNamesTheSameFolderFromWhereverItIsCalled) {
  EXPECT_EQ(RunIn(At(driver), "install.cmd /quiet").exitCode, 0);
  EXPECT_EQ(RunIn(At(driver + "/bin"), "..\\install.cmd /quiet").exitCode, 0);
  EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}, Call{"adddriver", TextOf(driver)}));
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

TEST_F(RegisterTest, NothingIsWrittenBesideTheScripts) {
  const std::vector<std::string> before = Files();
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  EXPECT_EQ(Run("uninstall.cmd").exitCode, 0);
  EXPECT_EQ(Files(), before);
}

TEST_F(RegisterTest, InstallPassesItsOptionsOn) {
  PutDriver("Old/ombrel");
  Write(driver + "/driver.vrdrivermanifest", R"({ "name" : "ombrel" })");
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
  PutDriver("New/ombrel");
  EXPECT_EQ(Run("install.cmd").exitCode, 7);
  EXPECT_EQ(Run("install.cmd", " --replace /quiet").exitCode, 0);
}

TEST_F(RegisterTest, AKeyIsWaitedForUnlessQuiet) {
  const std::string wait = "any key";
  EXPECT_THAT(Run("install.cmd", "").output, HasSubstr(wait));
  EXPECT_THAT(Run("uninstall.cmd", "").output, HasSubstr(wait));
  EXPECT_THAT(Run("install.cmd", " /quiet").output, Not(HasSubstr(wait)));
  EXPECT_THAT(Run("uninstall.cmd", " /QUIET").output, Not(HasSubstr(wait)));
}

// Of the driver and of the runtime, which the doctor reads out of a file and starts a program in.
TEST_F(RegisterTest, FoldersMayHaveAnyLettersThatWindowsAllows) {
  for (const char* folder : {"a b (c) & d", "e^f, g; h=i", "j! k!", "M\u00fcller \u00df \u0416"}) {
    PutDriver(std::string(folder) + "/ombrel");
    PutRuntime(std::string(folder) + "/SteamVR");
    WriteRegistry(runtime);
    const Outcome outcome = Run("install.cmd");
    EXPECT_EQ(outcome.exitCode, 0) << folder << outcome.output;
    EXPECT_EQ(Run("uninstall.cmd").exitCode, 0) << folder;
    EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}, Call{"removedriver", TextOf(driver)}));
  }
}

}  // namespace
}  // namespace ombrel::test
