// The doctor itself, on made-up installations that lie on a disk: how it sees a computer. What it makes of that is tested
// natively, finding by finding.
#include <windows.h>

#include "made_up_computer.h"

namespace ombrel::doctor::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kLibrary = "VR/ombrel/bin/win64/driver_ombrel.dll";

class ProgramTest : public MadeUpComputer {};

TEST_F(ProgramTest, FindsNothingOnASoundComputer) {
  EXPECT_THAT(Found(), IsEmpty());
  const Outcome outcome = RunDoctor("--language en");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("Nothing was found"), HasSubstr("Its library loads: yes"),
                                    HasSubstr("Ombrel.exe is running: yes"), HasSubstr(TextOf(driver))));
}

TEST_F(ProgramTest, ChangesNothing) {
  const auto before = Files();
  RunDoctor("--language en");
  RunDoctor("--json");
  EXPECT_EQ(Files(), before);
}

TEST_F(ProgramTest, FindsACompanionUnderAnotherSpelling) {
  StartCompanion("ombrel.exe");
  const Outcome outcome = RunDoctor("--language de");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("FEHLER:   Das Begleitprogramm l\u00e4uft als \"ombrel.exe\""));
}

TEST_F(ProgramTest, SeesThatTheRuntimeRuns) {
  StartCompanion("vrserver.exe");
  EXPECT_THAT(RunDoctor("--language en").output, HasSubstr("SteamVR is running: yes"));
}

TEST_F(ProgramTest, ReadsALogThatTheServerIsWriting) {
  HANDLE log = CreateFileW(At("Steam/logs/vrserver.txt").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                           OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(log, INVALID_HANDLE_VALUE);
  EXPECT_THAT(Found(), IsEmpty());
  CloseHandle(log);
}

TEST_F(ProgramTest, FindsAFolderThatLiesWhereItCannotBeLoaded) {
  PutDriver("Spiele f\u00fcr alle/ombrel-0.1");
  WriteRegistry({kRuntimeFolder}, {driver});
  EXPECT_THAT(Found(), ElementsAre("path_not_ascii", "folder_renamed"));
}

TEST_F(ProgramTest, FindsFilesThatAreMissingOrDamaged) {
  Remove(driver + "/resources/input/remapping.json");
  Write(driver + "/resources/localization/localization.json", "[");
  Write(driver + "/driver.vrdrivermanifest", R"({ "name" : "sample" })");
  Remove(kLibrary);
  EXPECT_THAT(Found(), ElementsAre("file_missing", "file_missing", "json_broken", "manifest_other_name"));
}

TEST_F(ProgramTest, FindsALibraryThatLacksAnother) {
  Patch(kLibrary, "d3d11.dll", "d3d1x.dll");
  EXPECT_THAT(Found(), ElementsAre("library_lacks_library"));
}

TEST_F(ProgramTest, FindsALibraryWithoutTheFactory) {
  Patch(kLibrary, "HmdDriverFactory", "HmdDriverFactorz");
  EXPECT_THAT(Found(), ElementsAre("library_lacks_function"));
}

TEST_F(ProgramTest, FindsALibraryThatIsDamaged) {
  Write(kLibrary, Read(kLibrary).substr(0, 1024));
  EXPECT_THAT(Found(), ElementsAre("library_damaged"));
}

TEST_F(ProgramTest, OutlivesALibraryThatCrashes) {
  std::filesystem::copy_file(std::getenv("OMBREL_TEST_CRASHING_LIBRARY"), At(kLibrary),
                             std::filesystem::copy_options::overwrite_existing);
  EXPECT_THAT(Found(), ElementsAre("library_crashes"));
}

TEST_F(ProgramTest, LooksForTheRuntimeInBothViewsOfTheMachinesRegistry) {
  for (const int wide : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
    const auto view = static_cast<REGSAM>(wide);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kUninstallKey, 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    RegSetValueExA(key, "InstallLocation", 0, REG_SZ, reinterpret_cast<const BYTE*>("D:\\else"), 8);
    RegCloseKey(key);
    EXPECT_THAT(Found(), ElementsAre("runtime_elsewhere"));
    ForgetInstalledRuntime();
  }
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(ProgramTest, WritesABundleThatNamesNobody) {
  SetEnvironmentVariableA("USERPROFILE", "C:\\Users\\Hannelore");
  SetEnvironmentVariableA("USERDOMAIN", "KELLERRECHNER");
  WriteSettings(R"("steamvr" : { "forcedDriver" : "C:\\Users\\hannelore\\x" })");
  WriteLog("ombrel: C:/Users/HANNELORE/y on KellerRechner\r\n");
  EXPECT_EQ(RunDoctor("--bundle \"" + TextOf("for a helper") + "\"").exitCode, 1);
  const std::string report = Read("for a helper/report.json");
  EXPECT_EQ(nlohmann::json::parse(report)["result"], "findings");
  EXPECT_THAT(Read("for a helper/server_log.txt"), HasSubstr("ombrel: C:/Users/<user>/y on <computer>"));
  for (const auto& [path, bytes] : Files()) {
    if (path.find("for a helper") == std::string::npos) continue;
    for (const char* name : {"annelore", "ANNELORE", "ellerRechner", "ELLERRECHNER"}) {
      EXPECT_THAT(bytes, Not(HasSubstr(name))) << path;
    }
  }
}

TEST_F(ProgramTest, SaysThatItCouldNotLookWhenTheBundleCannotBeWritten) {
  Write("file", "");
  EXPECT_EQ(RunDoctor("--bundle \"" + TextOf("file/below") + "\"").exitCode, 2);
}

TEST_F(ProgramTest, ShowsItsUsageForWhatItDoesNotUnderstand) {
  const Outcome outcome = RunDoctor("--unheard-of");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.output, HasSubstr("Exit codes"));
  EXPECT_EQ(RunDoctor("--help").exitCode, 0);
}

}  // namespace
}  // namespace ombrel::doctor::test
