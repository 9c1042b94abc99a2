// The doctor itself, on made-up installations that lie on a disk.
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

TEST_F(ProgramTest, FindsACompanionThatDoesNotRun) {
  StartCompanion("");
  EXPECT_THAT(Found(), ElementsAre("companion_not_running"));
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

TEST_F(ProgramTest, FindsADriverThatIsBlockedOrDisabled) {
  WriteSettings(R"("driver_ombrel" : { "blocked_by_safe_mode" : true })");
  EXPECT_THAT(Found(), ElementsAre("blocked_by_safe_mode"));
  WriteSettings(R"("driver_ombrel" : { "enable" : false })");
  EXPECT_THAT(Found(), ElementsAre("disabled"));
}

TEST_F(ProgramTest, FindsAMissingListAndOneThatIsNotUnderstood) {
  Write("Local/openvr/openvrpaths.vrpath", "{\n oops");
  EXPECT_THAT(Found(), ElementsAre("not_understood"));
  Remove("Local/openvr/openvrpaths.vrpath");
  EXPECT_THAT(Found(), ElementsAre("path_registry_missing"));
}

TEST_F(ProgramTest, FindsAFolderThatIsNotRegisteredOrRegisteredTwice) {
  WriteRegistry({kRuntimeFolder}, {});
  EXPECT_THAT(Found(), ElementsAre("not_registered"));
  WriteRegistry({kRuntimeFolder}, {"VR"});
  EXPECT_THAT(Found(), ElementsAre("registered_outer_folder"));
  WriteRegistry({kRuntimeFolder}, {driver, driver});
  EXPECT_THAT(Found(), ElementsAre("registered_twice"));
}

TEST_F(ProgramTest, FindsAnotherCopyBeforeThisOne) {
  PutDriver("Old/ombrel");
  PutDriver("VR/ombrel");
  WriteRegistry({kRuntimeFolder}, {"Old/ombrel", "gone/ombrel", driver});
  EXPECT_THAT(Found(), ElementsAre("other_copy_first", "listed_folder_gone"));
}

TEST_F(ProgramTest, FindsOtherDriversThatForceThemselvesOn) {
  Write("hands/driver.vrdrivermanifest", R"({ "name" : "hands", "alwaysActivate" : true })");
  WriteRegistry({kRuntimeFolder}, {driver, "hands"});
  WriteSettings(R"("steamvr" : { "forcedDriver" : "hands", "requireHmd" : false })");
  EXPECT_THAT(Found(), ElementsAre("other_driver_forced", "other_driver_always_active", "headset_not_required"));
}

TEST_F(ProgramTest, FindsWhatTheNewestLogSays) {
  WriteLog("Pellmor not active\r\n");
  EXPECT_THAT(Found(), ElementsAre("log_companion_missing"));
  Remove("Steam/logs/vrserver.txt");
  EXPECT_THAT(Found(), ElementsAre("log_missing"));
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

TEST_F(ProgramTest, FindsACopyInsideAnother) {
  PutDriver("VR/ombrel/ombrel");
  WriteRegistry({kRuntimeFolder}, {driver});
  EXPECT_THAT(Found(), ElementsAre("folder_nested"));
}

TEST_F(ProgramTest, FindsFilesThatAreMissingOrDamaged) {
  Remove(driver + "/resources/input/remapping.json");
  Write(driver + "/resources/localization/localization.json", "[");
  Write(driver + "/driver.vrdrivermanifest", R"({ "name" : "sample" })");
  Remove(kLibrary);
  EXPECT_THAT(Found(), ElementsAre("file_missing", "file_missing", "json_broken", "manifest_other_name"));
}

TEST_F(ProgramTest, FindsALibraryThatIsNone) {
  Write(kLibrary, "MZ, nothing else");
  EXPECT_THAT(Found(), ElementsAre("library_not_64_bits"));
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

TEST_F(ProgramTest, FindsOddSettings) {
  WriteSettings(R"("driver_ombrel" : { "windowWidth" : "wide", "hmdMode" : 1 })");
  EXPECT_THAT(Found(), ElementsAre("settings_wrong_type", "settings_smallest_picture", "settings_virtual_mode"));
}

TEST_F(ProgramTest, FindsARuntimeThatIsMissingOrElsewhere) {
  WriteRegistry({"gone"}, {driver});
  EXPECT_THAT(Found(), ElementsAre("runtime_missing"));
  WriteRegistry({"gone", kRuntimeFolder}, {driver});
  Remove(std::string(kRuntimeFolder) + "/bin/win64/vrserver.exe");
  EXPECT_THAT(Found(), ElementsAre("runtime_incomplete"));
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
