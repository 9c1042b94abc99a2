// What the scripts say and return where something is missing. Nothing may change then.
#include <windows.h>

#include "install_test.h"

namespace ombrel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RefusalTest : public InstallTest {
 protected:
  void ExpectRefused(const std::string& script, int code, const std::string& words) {
    const Outcome outcome = Run(script);
    EXPECT_EQ(outcome.exitCode, code) << script << ": " << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(words)) << script;
    EXPECT_THAT(outcome.output, HasSubstr("Nothing was changed")) << script;
    EXPECT_THAT(Calls(), IsEmpty());
  }

  void ExpectBothRefused(int code, const std::string& words) {
    ExpectRefused("install.cmd", code, words);
    ExpectRefused("uninstall.cmd", code, words);
  }
};

TEST_F(RefusalTest, WithoutTheLibrary) {
  Remove(driver + "/bin/win64/driver_ombrel.dll");
  ExpectRefused("install.cmd", 1, "not complete");
}

TEST_F(RefusalTest, WithoutTheManifest) {
  Remove(driver + "/driver.vrdrivermanifest");
  ExpectRefused("install.cmd", 1, "not complete");
}

TEST_F(RefusalTest, WithoutTheListOfFiles) {
  Remove(driver + "/resources/files-" OMBREL_TEST_VERSION ".txt");
  ExpectRefused("install.cmd", 1, "not complete");
}

TEST_F(RefusalTest, WithoutARegistryFile) {
  Remove("AppData/openvr/openvrpaths.vrpath");
  ExpectBothRefused(2, "openvrpaths.vrpath");
}

TEST_F(RefusalTest, WithoutALocalApplicationFolder) {
  SetEnvironmentVariableW(L"LOCALAPPDATA", nullptr);
  ExpectBothRefused(2, "openvrpaths.vrpath");
}

TEST_F(RefusalTest, WhenTheListOfRuntimesIsEmpty) {
  for (const char* list :
       {"[]", "[ ]", "[\n\t]", "null", "[ \"\" ]", "{}", "[ null, \"C:\\\\second\" ]", "[ \"C:\\\\unfinished"}) {
    SCOPED_TRACE(list);
    WriteRegistryText("{\n\t\"external_drivers\" : null,\n\t\"runtime\" : " + std::string(list) +
                      ",\n\t\"zzz\" : [ \"C:\\\\runtime\" ]\n}\n");
    ExpectRefused("install.cmd", 3, "does not name its folder");
  }
}

TEST_F(RefusalTest, WhenTheRegistryHasNoRuntimes) {
  for (const char* text : {"", "{}", "not JSON at all", "{ \"external_drivers\" : [ \"C:\\\\runtime\" ] }"}) {
    SCOPED_TRACE(text);
    WriteRegistryText(text);
    ExpectRefused("install.cmd", 3, "does not name its folder");
  }
  ExpectRefused("uninstall.cmd", 3, "does not name its folder");
}

TEST_F(RefusalTest, WithoutTheProgram) {
  Remove(driver + "/bin/win64/ombrel_doctor.exe");
  ExpectBothRefused(1, "not complete");
}

TEST_F(RefusalTest, SayingWhatToDoByHand) {
  WriteRegistryText("{ \"runtime\" : [] }");
  const std::string command = "vrpathreg.exe\" adddriver \"" + TextOf(driver) + "\"";
  EXPECT_THAT(Run("install.cmd").output, HasSubstr(command));
}

TEST_F(RefusalTest, WhenTheRuntimeHasNoVrpathreg) {
  Remove(runtime + "/bin/win64/vrpathreg.exe");
  ExpectBothRefused(4, TextOf(runtime));
}

TEST_F(RefusalTest, ShowingTheFolderAsWindowsWritesIt) {
  for (const char* folder : {R"(C:\\No where\\Steam)", "C:/No where/Steam", R"(C:\/No where\/Steam)"}) {
    SCOPED_TRACE(folder);
    WriteRegistryText("{ \"runtime\" : [ \"" + std::string(folder) + "\" ] }");
    ExpectRefused("install.cmd", 4, R"("C:\No where\Steam")");
  }
}

TEST_F(RefusalTest, WhenVrpathregFails) {
  for (const int code : {1, -1}) {
    LetVrpathregAnswer(code);
    for (const char* script : {"install.cmd", "uninstall.cmd"}) {
      const Outcome outcome = Run(script);
      EXPECT_EQ(outcome.exitCode, 5) << script << " with " << code;
      EXPECT_THAT(outcome.output, HasSubstr("failed with code " + std::to_string(code))) << script;
    }
  }
  EXPECT_THAT(Calls(), SizeIs(4));
}

}  // namespace
}  // namespace ombrel::test
