// Reading what others wrote: paths, JSON, libraries, crash dumps, the server's log.
#include <gmock/gmock.h>

#include "doctor/binary_files.h"
#include "doctor/json_file.h"
#include "doctor/paths.h"
#include "doctor/server_log.h"
#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

TEST(Paths, AreTheSameWhateverTheirCaseAndSlashes) {
  EXPECT_TRUE(SamePath("C:/VR/Ombrel/", R"(c:\vr\ombrel)"));
  EXPECT_TRUE(SamePath(R"(C:\)", "c:/"));
  EXPECT_FALSE(SamePath(R"(C:\VR\ombrel)", R"(C:\VR\ombrel2)"));
}

TEST(Paths, AreJoinedAndTakenApart) {
  EXPECT_EQ(Join(R"(C:\)", "VR"), R"(C:\VR)");
  EXPECT_EQ(Join(R"(C:\VR)", "a/b"), R"(C:\VR\a\b)");
  EXPECT_EQ(Leaf(R"(C:\VR\ombrel\)"), "ombrel");
  EXPECT_EQ(Parent(R"(C:\VR\ombrel\)"), R"(C:\VR)");
  EXPECT_EQ(Parent("ombrel"), "");
}

TEST(Paths, AndLinesOfTexts) {
  EXPECT_THAT(Lines("a\r\n\nb"), ElementsAre("a", "", "b"));
  EXPECT_THAT(Lines("a\n"), ElementsAre("a"));
  EXPECT_THAT(Lines(""), IsEmpty());
}

class JsonFileTest : public testing::Test {
 protected:
  JsonFile Read(const std::string& bytes) {
    machine_.Put("C:\\file", bytes);
    return ReadJson(machine_, "C:\\file");
  }

 private:
  FakeMachine machine_;
};

TEST_F(JsonFileTest, MayHaveAMarkOfByteOrderCommentsAndEscapes) {
  const JsonFile file = Read("\xEF\xBB\xBF// first\n{ \"a\" : { \"b\" : \"\\u00fc\\/\" } /* last */ }");
  EXPECT_TRUE(file.IsUnderstood());
  EXPECT_EQ(file.At("a", "b"), "\u00fc/");
  EXPECT_TRUE(file.At("a", "c").is_null());
  EXPECT_TRUE(file.At("x", "b").is_null());
}

TEST_F(JsonFileTest, TellsTheLineThatIsNotUnderstood) {
  EXPECT_EQ(Read("{\n\"a\" : 1,\n\"b\" 2\n}").wrongLine, 3);
  EXPECT_EQ(Read("").wrongLine, 1);
  EXPECT_EQ(Read("{\n\"a\" : \"\xFC\" }").wrongLine, 2);
  EXPECT_EQ(Read("\xFF\xFE{\0}\0").wrongLine, 1);
  EXPECT_EQ(Read("1").wrongLine, 1);
}

TEST_F(JsonFileTest, HasListsOfTexts) {
  const JsonFile file = Read(R"({ "one" : "a", "two" : ["a", "b"], "none" : null, "odd" : ["a", null], "map" : {} })");
  EXPECT_THAT(Texts(file.value, "one"), Optional(ElementsAre("a")));
  EXPECT_THAT(Texts(file.value, "two"), Optional(ElementsAre("a", "b")));
  EXPECT_THAT(Texts(file.value, "none"), Optional(IsEmpty()));
  EXPECT_THAT(Texts(file.value, "missing"), Optional(IsEmpty()));
  EXPECT_EQ(Texts(file.value, "odd"), std::nullopt);
  EXPECT_EQ(Texts(file.value, "map"), std::nullopt);
}

TEST_F(JsonFileTest, HasSwitchesAsTheRuntimeWritesThem) {
  const JsonFile file = Read(R"([true, false, 1, 0, "true", null])");
  EXPECT_EQ(Switch(file.value[0]), true);
  EXPECT_EQ(Switch(file.value[1]), false);
  EXPECT_EQ(Switch(file.value[2]), true);
  EXPECT_EQ(Switch(file.value[3]), false);
  EXPECT_EQ(Switch(file.value[4]), std::nullopt);
  EXPECT_EQ(Switch(file.value[5]), std::nullopt);
}

TEST(Library, TellsItsProcessor) {
  EXPECT_EQ(ProcessorOf(LibraryFor(kMachineX64)), kMachineX64);
  EXPECT_EQ(ProcessorOf(LibraryFor(0x14C)), 0x14C);
  EXPECT_EQ(ProcessorOf("MZ"), std::nullopt);
  EXPECT_EQ(ProcessorOf("\x7F"
                        "ELF"),
            std::nullopt);
}

TEST(Library, MayEndAnywhere) {
  const std::string whole = LibraryFor(kMachineX64);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(ProcessorOf(whole.substr(0, length)), std::nullopt) << length;
  }
}

TEST(Dump, TellsWhetherTheCrashWasInTheModule) {
  const auto inside = FindCrash(DumpWith("Driver_Ombrel.dll", 0x20FFF), "driver_ombrel.dll");
  ASSERT_TRUE(inside && inside->isInModule);
  EXPECT_EQ(inside->offset, 0xFFFU);
  for (const std::uint64_t address : {0x1FFFFU, 0x21000U}) {
    const auto beside = FindCrash(DumpWith("driver_ombrel.dll", address), "driver_ombrel.dll");
    ASSERT_TRUE(beside);
    EXPECT_FALSE(beside->isInModule) << address;
  }
}

TEST(Dump, WithoutTheModuleSaysNothing) {
  EXPECT_FALSE(FindCrash(DumpWith("other.dll", 0x20000), "driver_ombrel.dll"));
  EXPECT_FALSE(FindCrash("no dump", "driver_ombrel.dll"));
}

TEST(Dump, MayEndAnywhereAndPointAnywhere) {
  const std::string whole = DumpWith("driver_ombrel.dll", 0x20000);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    (void)FindCrash(whole.substr(0, length), "driver_ombrel.dll");
    std::string wild = whole;
    wild.replace(length, std::min<std::size_t>(4, whole.size() - length), "\xFF\xFF\xFF\xFF");
    (void)FindCrash(wild, "driver_ombrel.dll");
  }
}

TEST(ServerLog, IsReadFromTheNewestStartOn) {
  EXPECT_THAT(NewestSession("startup with PID=1\nPellmor not active\nstartup with PID=2\nlater\n"),
              ElementsAre("startup with PID=2", "later"));
  EXPECT_THAT(NewestSession("no start\r\nknown\r\n"), ElementsAre("no start", "known"));
}

TEST(ServerLog, TellsOfALaterGoodStartThatTheEarlierBadOneIsOver) {
  EXPECT_THAT(JudgeSession({"Pellmor not active", "Ombrel process is running", "HMD activated with id 0 "}), IsEmpty());
  EXPECT_THAT(
      JudgeSession({"Graphics device lost, reason: -1", "Graphics device made anew", "HMD activated with id 0"}),
      testing::Not(testing::Contains(testing::Field(&Finding::id, "log_device_lost"))));
}

TEST(ServerLog, TellsEachThingOnce) {
  const std::string line = "Error while creating boolean component /input/grip/click, error: 1";
  EXPECT_EQ(JudgeSession({line, line}).size(), 1U);
}

TEST(ServerLog, GivesTheCodeOfAnErrorThatIsNotKnown) {
  const auto findings =
      JudgeSession({"Unable to load driver ombrel because of error VRInitError_Init_Internal(124). Skipping."});
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_THAT(findings[0].values, ElementsAre("124"));
}

TEST(ServerLog, LeavesOtherDriversLinesAlone) {
  for (const char* line : {"[Remapping] Loading lighthouse failed.", "Not loading driver null because it is disabled",
                           "Skipping duplicate external driver hands because", "ombrel: bin\\win32 not found"}) {
    EXPECT_THAT(JudgeSession({"ombrel", line}), IsEmpty()) << line;
  }
  EXPECT_FALSE(IsAboutUs("[Remapping] Loading lighthouse failed."));
  EXPECT_TRUE(IsAboutUs("HMD activated with id 0"));
}

}  // namespace
}  // namespace ombrel::doctor::test
