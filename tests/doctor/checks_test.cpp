// What is said of a sound computer, and when several things are spoilt.
#include <gmock/gmock.h>

#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Checks, FindNothingOnASoundComputer) {
  FakeMachine machine;
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, FindNothingWhileTheRuntimeRuns) {
  FakeMachine machine;
  machine.processes.push_back({300, "vrserver.exe"});
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, SayTheFirstCauseFirst) {
  FakeMachine machine;
  machine.WriteSettings(R"("driver_ombrel" : { "blocked_by_safe_mode" : true, "hmdMode" : 1 })");
  machine.WriteRegistry({kRuntime}, {});
  machine.load.error = 126;
  machine.adapters.clear();
  EXPECT_THAT(Ids(machine), ElementsAre("blocked_by_safe_mode", "not_registered", "library_lacks_library",
                                        "settings_virtual_mode", "adapter_none"));
}

TEST(Checks, LeaveOutWhatTheLogSaysOfACauseThatIsFound) {
  FakeMachine machine;
  machine.WriteSettings(R"("driver_ombrel" : { "blocked_by_safe_mode" : true })");
  machine.WriteLog({"Not loading driver ombrel because it was blocked by a previous safe mode event"});
  EXPECT_THAT(Ids(machine), ElementsAre("blocked_by_safe_mode"));
}

TEST(Checks, NameEveryMissingFile) {
  FakeMachine machine;
  machine.Remove(R"(C:\VR\ombrel\bin\win64\driver_ombrel.dll)");
  machine.Remove(R"(C:\VR\ombrel\resources\input\remapping.json)");
  EXPECT_THAT(Ids(machine), ElementsAre("file_missing", "file_missing"));
}

TEST(Checks, TakeAScriptThatIsGoneForNoFault) {
  FakeMachine machine;
  EXPECT_FALSE(machine.Has(R"(C:\VR\ombrel\install.cmd)"));
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, KnowTheCompanionByEachLetterOfItsName) {
  for (const char* name : {"OMBREL.EXE", "ombrel.exe", "Ombrel (1).exe", "Ombrel.EXE"}) {
    FakeMachine machine;
    machine.processes[2].executableName = name;
    EXPECT_THAT(Ids(machine), ElementsAre("companion_other_spelling")) << name;
  }
}

TEST(Checks, DoNotTakeTheDoctorForTheCompanion) {
  FakeMachine machine;
  machine.processes.push_back({5, "ombrel_doctor.exe"});
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, ReadTheRegistryWithCommentsEscapesAndOtherSlashes) {
  FakeMachine machine;
  machine.Put(kRegistry,
              "\xEF\xBB\xBF{ // all of it\n \"runtime\" : \"C:/Steam/steamapps/common/SteamVR/\", /* and */\n"
              "\"external_drivers\" : [ \"C:\\\\\\u0056R\\/ombrel\\\\\" ] }");
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, TakeTheFirstRuntimeThatExists) {
  FakeMachine machine;
  machine.WriteRegistry({R"(D:\gone)", kRuntime}, {machine.driver});
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, TakeAdapterNamesAsTheDriverDoes) {
  FakeMachine machine;
  machine.adapters.push_back({"NVIDIA", "0:3", false, true});
  const auto findings = Examined(machine);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_THAT(findings[0].values, ElementsAre("NVIDIA"));
}

TEST(Checks, FindNoFaultWithPipesThatCannotBeListed) {
  FakeMachine machine;
  machine.pipes.reset();
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, FindNoFaultWithACompanionAndARuntimeThatBothRunAsAdministrator) {
  FakeMachine machine;
  machine.processes.push_back({300, "vrserver.exe"});
  machine.rights[100] = machine.rights[300] = Rights::kOther;
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, FindNoFaultWithACompanionThatIsNoAdministratorAsTheDoctorIs) {
  FakeMachine machine;
  machine.account.isElevated = true;
  machine.rights[100] = Rights::kOther;
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, FindACompanionThatTheRuntimeDoesNotReach) {
  FakeMachine machine;
  machine.processes.push_back({300, "vrserver.exe"});
  machine.rights[300] = Rights::kOther;
  EXPECT_THAT(Ids(machine), ElementsAre("companion_other_rights"));
}

TEST(Checks, FollowTheUsersSettingsBeforeTheShippedOnes) {
  FakeMachine machine;
  machine.WriteSettings(R"("driver_ombrel" : { "windowWidth" : 640, "windowHeight" : 480, "renderScale" : 400 })");
  EXPECT_THAT(Ids(machine), IsEmpty());
}

TEST(Checks, LookForTheNewestDumpThatNamesTheDriver) {
  FakeMachine machine;
  machine.Put(R"(C:\Steam\dumps\old.dmp)", DumpWith("driver_ombrel.dll", 0x20001));
  machine.Put(R"(C:\Steam\dumps\new.dmp)", DumpWith("driver_ombrel.dll", 0x20FFF) + "later");
  machine.Put(R"(C:\Steam\dumps\newest.dmp)", DumpWith("other.dll", 0x20FFF) + "latest of all");
  const auto findings = Examined(machine);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_THAT(findings[0].values, ElementsAre(R"(C:\Steam\dumps\new.dmp)", "2026-11-22 10:00", "0xFFF"));
}

TEST(Checks, SayNothingOfARegistryThatWasNotUnderstoodButThat) {
  FakeMachine machine;
  machine.Put(kRegistry, "{ \"runtime\" :\n [ \"C:\\\\Ste");
  const auto findings = Examined(machine);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].id, "not_understood");
  EXPECT_EQ(findings[0].values[1], "2");
}

}  // namespace
}  // namespace ombrel::doctor::test
