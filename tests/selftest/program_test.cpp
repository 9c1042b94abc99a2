// The self-test itself, in its brief form: a copy of its folder, run as a player would run it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include <nlohmann/json.hpp>

#include "base/child_process.h"
#include "doctor/anonymizer.h"
#include "machine_win32.h"
#include "test_files/scratch_folder.h"

namespace ombrel::selftest {
namespace {

using nlohmann::json;
using test::FromEnvironment;
using test::ReadAll;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::uint32_t kLongMs = 240'000;

// A folder of a name that no report may tell.
std::optional<test::ScratchFolder> home;
std::filesystem::path Folder() { return home->At("Zebra Quince/ombrel-selftest"); }

std::set<std::string> Files() {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Folder())) {
    files.insert(std::filesystem::relative(entry.path(), Folder()).generic_string());
  }
  return files;
}

struct Outcome {
  std::uint32_t code = 0xFFFF;
  std::string output;
  json report;
};

Outcome RunSelfTest(std::vector<std::string> arguments) {
  const auto log = home->At("output.txt");
  arguments.insert(arguments.end(), {"--out", Folder().string()});
  const bench::ChildProcess program(Folder() / "bin/ombrel_selftest.exe", arguments, log);
  Outcome outcome;
  outcome.code = program.WaitForEnd(kLongMs).value_or(outcome.code);
  outcome.output = ReadAll(log);
  outcome.report = json::parse(ReadAll(Folder() / "report.json"), nullptr, false);
  return outcome;
}

std::set<std::string> Values(const json& list, const char* key) {
  std::set<std::string> values;
  for (const json& each : list) values.insert(each.at(key).get<std::string>());
  return values;
}

std::vector<std::string> Bad(const json& report) {
  std::vector<std::string> bad;
  for (const json& each : report.at("verdicts")) {
    if (each.at("result") == "bad") bad.push_back(each.dump());
  }
  return bad;
}

// One run that several tests look at.
class ProgramTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    home.emplace();
    std::filesystem::create_directories(Folder());
    std::filesystem::copy(FromEnvironment("OMBREL_TEST_SELFTEST"), Folder(), std::filesystem::copy_options::recursive);
    filesBefore = Files();
    run = RunSelfTest({"--brief"});
    std::ofstream(FromEnvironment("OMBREL_TEST_REPORT"), std::ios::binary) << ReadAll(Folder() / "report.json");
  }
  static void TearDownTestSuite() { home.reset(); }

  static inline Outcome run;
  static inline std::set<std::string> filesBefore;
};

TEST_F(ProgramTest, NothingIsBadHere) {
  EXPECT_EQ(run.code, 0U) << run.output;
  ASSERT_TRUE(run.report.is_object()) << run.output;
  EXPECT_THAT(Bad(run.report), IsEmpty());
  EXPECT_EQ(run.report.at("verdict"), "unknown");
}

TEST_F(ProgramTest, TheReportSaysWhatWasNotTheMachinesOwn) {
  EXPECT_EQ(run.report.at("subtitle"), "stand-in sharing, software rasterizer");
}

TEST_F(ProgramTest, EachPartHasItsVerdicts) {
  const auto groups = Values(run.report.at("verdicts"), "group");
  EXPECT_EQ(groups, (std::set<std::string>{"Machine", "Direct3D", "Direct mode, 60 frames a second",
                                           "Virtual display, 60 frames a second", "Faults"}));
}

TEST_F(ProgramTest, SessionsHaveTheirDistributionsAndPictures) {
  std::size_t charts = 0, images = 0;
  for (const json& section : run.report.at("sections")) {
    for (const json& chart : section.value("charts", json::array())) {
      ++charts;
      EXPECT_THAT(chart.at("series")[0].at("values"), Not(IsEmpty())) << chart.at("title");
    }
    images += section.value("images", json::array()).size();
  }
  EXPECT_EQ(charts, 2U * 9U - 1U);  // of the virtual display no pose comes with frames
  EXPECT_EQ(images, 2U);
}

TEST_F(ProgramTest, NobodyIsNamed) {
  json report = run.report;
  for (json& section : report.at("sections")) section.erase("images");
  const std::string text = report.dump();
  const doctor::Account account = doctor::WindowsMachine().WhoAmI();
  EXPECT_FALSE(account.userNames.empty() || account.computerNames.empty());
  EXPECT_EQ(doctor::Anonymizer(account).Clean(text), text);
  for (const char* part : {"Zebra", "Quince", "ombrel-selftest", ":\\\\", ":/"})
    EXPECT_THAT(text, Not(HasSubstr(part)));
}

TEST_F(ProgramTest, NothingIsLeftButTheReport) {
  auto after = filesBefore;
  after.insert({"report.html", "report.json"});
  EXPECT_EQ(Files(), after);
  for (const ProcessEntry& process : ListProcesses()) {
    for (const char* name : {"Ombrel.exe", "runtime_sim.exe", "scenarios.exe", "ombrel_selftest.exe"}) {
      EXPECT_NE(process.executableName, name);
    }
  }
}

TEST_F(ProgramTest, ThePageHoldsTheReport) {
  const std::string page = ReadAll(Folder() / "report.html");
  EXPECT_THAT(page, HasSubstr("<script"));
  EXPECT_THAT(page, HasSubstr("\"title\": \"Ombrel self-test\""));
  EXPECT_THAT(page, Not(HasSubstr("@REPORT_JSON@")));
}

TEST_F(ProgramTest, ItDoesNotStartWhileTheRuntimeOrACompanionRuns) {
  std::filesystem::remove(Folder() / "report.json");
  for (const char* name : {"vrserver.exe", "vrmonitor.exe", "ombrel.exe"}) {
    const auto other = home->At(name);
    std::filesystem::copy_file(FromEnvironment("OMBREL_TEST_IDLE"), other);
    const bench::ChildProcess running(other);
    const Outcome outcome = RunSelfTest({"--brief"});
    EXPECT_EQ(outcome.code, 1U);
    EXPECT_THAT(outcome.output, HasSubstr(std::string(name) + " is running"));
    EXPECT_TRUE(outcome.report.is_discarded());
  }
}

TEST_F(ProgramTest, ADriverThatDoesNotLoadIsBad) {
  std::filesystem::remove(Folder() / "driver/ombrel/bin/win64/driver_ombrel.dll");
  const Outcome outcome = RunSelfTest({"--brief", "--only", "sessions"});
  EXPECT_EQ(outcome.code, 1U);
  ASSERT_TRUE(outcome.report.is_object()) << outcome.output;
  EXPECT_EQ(outcome.report.at("verdict"), "bad");
  EXPECT_THAT(Bad(outcome.report), Contains(HasSubstr("the runtime failed (exit code 1)")));
}

}  // namespace
}  // namespace ombrel::selftest
