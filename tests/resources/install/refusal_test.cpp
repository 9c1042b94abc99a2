// What the scripts pass on of a refusal: tests/doctor has each of them. Nothing may change then.
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

TEST_F(RefusalTest, WithoutALocalApplicationFolder) {
  SetEnvironmentVariableW(L"LOCALAPPDATA", nullptr);
  ExpectBothRefused(2, "openvrpaths.vrpath");
}

TEST_F(RefusalTest, WhenTheRegistryHasNoRuntimes) {
  WriteRegistryText("{}");
  ExpectBothRefused(3, "does not name its folder");
}

TEST_F(RefusalTest, WithoutTheProgram) {
  Remove(driver + "/bin/win64/ombrel_doctor.exe");
  ExpectBothRefused(1, "not complete");
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
