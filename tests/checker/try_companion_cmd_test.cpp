// try_companion.cmd of the self-test's folder, as a maker would run it on Windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include <nlohmann/json.hpp>

#include "test_files/command_line.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {
namespace {

using testing::HasSubstr;

class TryCompanionCmd : public testing::Test {
 protected:
  TryCompanionCmd() {
    for (const char* const name : {"My companion", "The zip & all"})
      std::filesystem::create_directories(folder.At(name));
    std::filesystem::copy(FromEnvironment("OMBREL_TEST_SELFTEST"), folder.At("The zip & all/ombrel-selftest"),
                          std::filesystem::copy_options::recursive);
  }

  void PutCompanion(const std::string& name) const {
    std::filesystem::copy_file(FromEnvironment("OMBREL_TEST_COMPANION"), folder.At("My companion/" + name));
  }
  [[nodiscard]] Outcome Try(const std::string& arguments) const {
    const std::string script = folder.TextOf("The zip & all/ombrel-selftest/try_companion.cmd");
    return RunCommandLine("cmd.exe /d /c \"\"" + script + "\" " + arguments + "\"", folder.At(""));
  }
  [[nodiscard]] std::string Report(const std::string& file) const {
    return folder.Read("The zip & all/ombrel-selftest/companion-report/" + file);
  }

  ScratchFolder folder;
};

TEST_F(TryCompanionCmd, JudgesACompanionByTheDriversSide) {
  PutCompanion("Ombrel.exe");
  folder.Write("small picture.json", R"({"driver_ombrel": {"windowWidth": 640, "windowHeight": 360}})");
  const Outcome outcome = Try(
      R"(--keep-devices --seconds 4 --settings "small picture.json" "My companion\Ombrel.exe" --until-disconnect --print-frames)");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output << Report("runtime.log");
  EXPECT_THAT(outcome.output, HasSubstr("companion: connection 1 frame 0"));
  EXPECT_THAT(outcome.output, HasSubstr("checker: no rule was broken; frames were"));
  const auto verdict = nlohmann::json::parse(Report("check.json"));
  EXPECT_FALSE(verdict.at("bothSidesWatched").get<bool>());
  EXPECT_GT(verdict.at("figures").at("framesHandedOver"), 30);
  EXPECT_THAT(Report("companion.log"), HasSubstr("companion: connection 1 frame 0"));
  EXPECT_THAT(Report("messages.txt"), HasSubstr("to companion  FrameSharingInfo  76 bytes"));
  EXPECT_THAT(Report("report.html"), HasSubstr("A companion on the bench"));
}

TEST_F(TryCompanionCmd, RefusesWhatIsNoCompanion) {
  PutCompanion("other.exe");
  const Outcome other = Try(R"("My companion\other.exe")");
  EXPECT_EQ(other.exitCode, 2);
  EXPECT_THAT(other.output, HasSubstr("must be named Ombrel.exe, spelled like this (rule P1)"));
  const Outcome missing = Try(R"("My companion\Ombrel.exe" --quietly)");
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_THAT(missing.output, HasSubstr("there is no "));
}

}  // namespace
}  // namespace ombrel::test
