// What is handed on to a helper names neither people nor computers.
#include <gmock/gmock.h>

#include "doctor/anonymizer.h"
#include "doctor/paths.h"
#include "doctor/report.h"
#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Account Known() {
  return {"J\u00f6rg", "Anna", false, {"J\u00f6rg", "J\u00f6rg.GAMINGPC", "JRG~1"}, {"GAMINGPC", "PC"}};
}

TEST(Anonymizer, TakesNamesOutInAnyCase) {
  const Anonymizer anonymizer(Known());
  EXPECT_EQ(anonymizer.Clean("C:\\Users\\j\u00f6RG\\x of ANNA on gamingpc"),
            "C:\\Users\\<user>\\x of <user> on <computer>");
}

TEST(Anonymizer, TakesTheLongerNameFirst) {
  EXPECT_EQ(Anonymizer(Known()).Clean("C:/Users/J\u00f6rg.GAMINGPC/x, JRG~1"), "C:/Users/<user>/x, <user>");
}

TEST(Anonymizer, TakesNamesOutOfEscapes) {
  EXPECT_EQ(Anonymizer(Known()).Clean(R"("C:\\Users\\J\u00F6rg\\x")"), R"("C:\\Users\\<user>\\x")");
}

TEST(Anonymizer, TakesAShortNameForAWordOnly) {
  EXPECT_EQ(Anonymizer(Known()).Clean("PC, pcs, (pc) 1PC \u00fcPC"), "<computer>, pcs, (<computer>) 1PC \u00fcPC");
}

TEST(Anonymizer, TakesALongNameOutOfOtherWords) {
  EXPECT_EQ(Anonymizer(Known()).Clean("annasfolder"), "<user>sfolder");
}

TEST(Anonymizer, LooksIntoJson) {
  const nlohmann::json value = {{"Anna", {"anna", 1, {{"x", "GamingPC"}}}}};
  EXPECT_EQ(Anonymizer(Known()).CleanJson(value).dump(), R"({"<user>":["<user>",1,{"x":"<computer>"}]})");
}

// A computer on which everything that can tells whose it is.
FakeMachine TellTale() {
  FakeMachine machine;
  machine.account = Known();
  machine.MoveDriver("C:\\Users\\J\u00f6rg\\VR of Anna\\ombrel");
  machine.environment["LOCALAPPDATA"] = R"(C:\Users\Joerg\AppData\Local)";
  machine.WriteSettings(
      "\"steamvr\" : { \"forcedDriver\" : \"GAMINGPC\" }, \"driver_J\u00f6rg\" : {}, "
      "\"friends\" : { \"name\" : \"Sandra\" }");
  machine.WriteLog({"ombrel: C:\\Users\\J\u00d6RG.gamingpc\\x", "Pellmor not active", "Sandra's headset"});
  machine.Put(R"(C:\Steam\logs\vrserver.previous.txt)", "ombrel at GAMINGPC\nSandra\n");
  machine.Put(R"(C:\Steam\dumps\anna.dmp)", DumpWith("driver_ombrel.dll", 0x20001));
  return machine;
}

std::vector<NamedFile> Bundle(FakeMachine& machine) {
  const Survey survey = Look(machine);
  return MakeBundle(survey, MakeReport(survey));
}

TEST(Bundle, NamesNobodyInAnyByte) {
  FakeMachine machine = TellTale();
  // In upper case, umlauts aside, which Windows' own list of spellings has.
  machine.account.userNames.push_back("J\u00d6RG");
  for (const NamedFile& file : Bundle(machine)) {
    const std::string bytes = LowerAscii(file.bytes);
    for (const char* name : {"j\u00f6rg", "j\u00d6rg", "j\\u00f6rg", "anna", "gamingpc", "sandra"}) {
      EXPECT_THAT(bytes, Not(HasSubstr(name))) << file.name;
    }
  }
}

TEST(Bundle, HasWhatAHelperNeeds) {
  FakeMachine machine = TellTale();
  std::map<std::string, std::string> files;
  for (const NamedFile& file : Bundle(machine)) files[file.name] = file.bytes;
  EXPECT_THAT(files["report.txt"], HasSubstr("set to take its headset from the driver \"<computer>\""));
  EXPECT_EQ(nlohmann::json::parse(files["report.json"])["result"], "findings");
  EXPECT_THAT(files["openvrpaths.txt"], HasSubstr(R"("C:\\Users\\<user>\\VR of <user>\\ombrel")"));
  EXPECT_THAT(files["settings.txt"], AllOf(HasSubstr("forcedDriver"), HasSubstr("driver_<user>")));
  EXPECT_THAT(files["server_log.txt"], AllOf(HasSubstr("Pellmor not active"), HasSubstr("ombrel: C:\\Users\\")));
  EXPECT_THAT(files["server_log_before.txt"], HasSubstr("ombrel at <computer>"));
  EXPECT_THAT(files["crash_dumps.txt"], HasSubstr("<user>.dmp"));
}

TEST(Bundle, HasAFileThatWasNotUnderstoodAsItStands) {
  FakeMachine machine = TellTale();
  machine.WriteSettings(R"("anna" oops)");
  for (const NamedFile& file : Bundle(machine)) {
    if (file.name == "settings.txt") {
      EXPECT_EQ(file.bytes, "{ // by hand\n\"<user>\" oops }\n");
    }
  }
}

}  // namespace
}  // namespace ombrel::doctor::test
