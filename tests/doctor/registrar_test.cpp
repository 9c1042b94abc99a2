// What registering the driver changes, and when nothing is changed.
#include <gmock/gmock.h>

#include "doctor/registrar.h"
#include "doctor/survey.h"
#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RegistrarTest : public testing::Test {
 protected:
  RegistrarResult Installed(bool replace = false) { return Install(machine, machine, replace, Language::kEnglish); }
  RegistrarResult Uninstalled() { return Uninstall(machine, machine, Language::kEnglish); }

  void ExpectNothingChanged(RegistrarCode code) {
    for (const RegistrarResult& result : {Installed(), Uninstalled()}) {
      EXPECT_EQ(result.code, code);
      EXPECT_THAT(result.text, HasSubstr("Nothing was changed"));
    }
    EXPECT_THAT(machine.calls, IsEmpty());
  }

  void PutOtherCopy() {
    machine.PutDriver(kOther);
    machine.WriteRegistry({kRuntime}, {kOther});
  }

  FakeMachine machine;
};

TEST_F(RegistrarTest, AddsTheFolder) {
  machine.WriteRegistry({kRuntime}, {});
  EXPECT_EQ(Installed().code, RegistrarCode::kDone);
  EXPECT_THAT(machine.calls, ElementsAre(R"(vrpathreg.exe adddriver C:\VR\ombrel)"));
}

TEST_F(RegistrarTest, TakesTheFolderOut) {
  EXPECT_EQ(Uninstalled().code, RegistrarCode::kDone);
  EXPECT_THAT(machine.calls, ElementsAre(R"(vrpathreg.exe removedriver C:\VR\ombrel)"));
}

TEST_F(RegistrarTest, LeavesAnotherCopyUnlessToldAndSaysThatItIsLoaded) {
  PutOtherCopy();
  const RegistrarResult result = Installed();
  EXPECT_EQ(result.code, RegistrarCode::kOtherCopyFirst);
  EXPECT_THAT(result.text, HasSubstr(kOther));
  EXPECT_THAT(machine.calls, ElementsAre(R"(vrpathreg.exe adddriver C:\VR\ombrel)"));
}

TEST_F(RegistrarTest, TakesAnotherCopyOutWhenToldTo) {
  PutOtherCopy();
  EXPECT_EQ(Installed(true).code, RegistrarCode::kDone);
  EXPECT_THAT(machine.calls,
              ElementsAre(R"(vrpathreg.exe removedriver D:\Old\ombrel)", R"(vrpathreg.exe adddriver C:\VR\ombrel)"));
}

TEST_F(RegistrarTest, TakesACopyThatIsGoneOutAsItIsListed) {
  machine.WriteRegistry({kRuntime}, {"D:/gone/Ombrel/", "D:\\other\\thing"});
  EXPECT_EQ(Installed(true).code, RegistrarCode::kDone);
  EXPECT_THAT(machine.calls,
              ElementsAre("vrpathreg.exe removedriver D:/gone/Ombrel/", R"(vrpathreg.exe adddriver C:\VR\ombrel)"));
}

TEST_F(RegistrarTest, IsContentWithAnotherCopyBehindOurs) {
  machine.PutDriver(kOther);
  machine.WriteRegistry({kRuntime}, {machine.driver, kOther});
  machine.exitCode = 0;
  EXPECT_EQ(Uninstalled().code, RegistrarCode::kDone);
  machine.WriteRegistry({kRuntime}, {});
  EXPECT_EQ(Installed().code, RegistrarCode::kDone);
}

TEST_F(RegistrarTest, DeletesWhatOnlyAnOlderVersionHad) {
  machine.Put(R"(C:\VR\ombrel\resources\files-0.0.9.txt)", "resources\\old.json\r\nRESOURCES\\icons\\ready.png\r\n");
  machine.Put(R"(C:\VR\ombrel\resources\old.json)", "");
  machine.Put(R"(C:\VR\ombrel\mine.txt)", "");
  EXPECT_THAT(Installed().text, HasSubstr(R"(Deleted "resources\old.json")"));
  EXPECT_FALSE(machine.Has(R"(C:\VR\ombrel\resources\old.json)"));
  EXPECT_FALSE(machine.Has(R"(C:\VR\ombrel\resources\files-0.0.9.txt)"));
  EXPECT_TRUE(machine.Has(R"(C:\VR\ombrel\resources\icons\ready.png)"));
  EXPECT_TRUE(machine.Has(R"(C:\VR\ombrel\mine.txt)"));
}

TEST_F(RegistrarTest, DeletesNothingOutsideTheFolder) {
  machine.Put(R"(C:\VR\ombrel\resources\files-0.0.9.txt)", "..\\a.txt\n\\a.txt\nC:a.txt\n../a.txt\n");
  for (const char* file : {R"(C:\VR\a.txt)", R"(C:\VR\ombrel\\a.txt)", R"(C:\VR\ombrel\..\a.txt)",
                           R"(C:\VR\ombrel\C:a.txt)", R"(C:\VR\ombrel\a.txt)"}) {
    machine.Put(file, "");
  }
  EXPECT_THAT(Installed().text, testing::Not(HasSubstr("Deleted")));
}

TEST_F(RegistrarTest, RefusesAFolderThatIsNotComplete) {
  for (const std::string& file : {std::string(kLibrary), std::string(kManifest), ListOfFiles()}) {
    FakeMachine incomplete;
    incomplete.Remove(incomplete.driver + "\\" + file);
    const RegistrarResult result = Install(incomplete, incomplete, false, Language::kEnglish);
    EXPECT_EQ(result.code, RegistrarCode::kIncomplete) << file;
    EXPECT_THAT(result.text, HasSubstr(file));
    EXPECT_THAT(incomplete.calls, IsEmpty());
  }
}

TEST_F(RegistrarTest, TakesAFolderOutThatIsNotComplete) {
  machine.Remove(machine.driver + "\\" + kLibrary);
  EXPECT_EQ(Uninstalled().code, RegistrarCode::kDone);
}

TEST_F(RegistrarTest, RefusesWhileTheLibraryIsInUse) {
  machine.inUse = R"(C:\VR\ombrel\bin\win64\driver_ombrel.dll)";
  EXPECT_EQ(Installed().code, RegistrarCode::kInUse);
  EXPECT_THAT(machine.calls, IsEmpty());
  EXPECT_EQ(Uninstalled().code, RegistrarCode::kDone);
}

TEST_F(RegistrarTest, RefusesWithoutAList) {
  machine.Remove(kRegistry);
  ExpectNothingChanged(RegistrarCode::kNoRegistry);
}

TEST_F(RegistrarTest, RefusesAListThatNamesNoRuntime) {
  machine.installed.reset();
  for (const char* text :
       {"{}", R"({ "runtime" : [] })", R"({ "runtime" : [ "" ] })", R"({ "runtime" : [ null ] })", "no JSON", ""}) {
    SCOPED_TRACE(text);
    machine.Put(kRegistry, text);
    ExpectNothingChanged(RegistrarCode::kNoRuntime);
  }
}

TEST_F(RegistrarTest, TellsTheLineOfAListThatCannotBeRead) {
  machine.installed.reset();
  machine.Put(kRegistry, "{\n\noops");
  EXPECT_THAT(Installed().text, HasSubstr("from line 3 on"));
}

TEST_F(RegistrarTest, RefusesARuntimeWithoutItsProgramSayingWhatToDoByHand) {
  machine.Remove(std::string(kRuntime) + R"(\bin\win64\vrpathreg.exe)");
  ExpectNothingChanged(RegistrarCode::kNoProgram);
  EXPECT_THAT(Installed().text, HasSubstr(R"(vrpathreg.exe" adddriver "C:\VR\ombrel")"));
}

TEST_F(RegistrarTest, TakesTheInstalledRuntimeWhenTheListHasNone) {
  machine.WriteRegistry({R"(D:\gone)"}, {});
  EXPECT_EQ(Installed().code, RegistrarCode::kDone);
}

TEST_F(RegistrarTest, NamesTheListedRuntimeWhenThereIsNoneAnywhere) {
  machine.installed.reset();
  machine.WriteRegistry({"D:/gone/"}, {});
  EXPECT_THAT(Installed().text, HasSubstr("\"D:\\gone\""));
  EXPECT_EQ(Installed().code, RegistrarCode::kNoProgram);
}

TEST_F(RegistrarTest, TellsTheCodeOfAProgramThatFails) {
  machine.exitCode = -1;
  for (const RegistrarResult& result : {Installed(), Uninstalled()}) {
    EXPECT_EQ(result.code, RegistrarCode::kProgramFailed);
    EXPECT_THAT(result.text, HasSubstr("failed with code -1"));
  }
}

TEST_F(RegistrarTest, SpeaksGermanWhenAskedTo) {
  EXPECT_THAT(Install(machine, machine, false, Language::kGerman).text, HasSubstr("SteamVR kennt jetzt"));
}

}  // namespace
}  // namespace ombrel::doctor::test
