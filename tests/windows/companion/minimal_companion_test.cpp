// The companion that makers copy, against the driver in a stand-in of the runtime.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>

#include "base/wait.h"
#include "nlohmann/json.hpp"
#include "program.h"

namespace {

using testing::HasSubstr;

constexpr std::uint32_t kPatienceMs = 120'000;
constexpr int kControllerClass = 2;

std::string PixelsOf(const std::filesystem::path& path) {
  const std::string content = ombrel::test::ReadAll(path);
  BITMAPFILEHEADER file{};
  BITMAPINFOHEADER picture{};
  EXPECT_EQ(content.size(), sizeof(file) + sizeof(picture) + 4 * 1280 * 720) << path;
  if (content.size() < sizeof(file) + sizeof(picture)) return {};
  std::memcpy(&file, content.data(), sizeof(file));
  std::memcpy(&picture, content.data() + sizeof(file), sizeof(picture));
  EXPECT_EQ(content.substr(0, 2), "BM");
  EXPECT_EQ(picture.biWidth, 1280);
  EXPECT_EQ(picture.biHeight, -720) << "rows from the top";
  return content.substr(file.bfOffBits);
}

class MinimalCompanion : public testing::Test {
 protected:
  MinimalCompanion() { std::filesystem::create_directories(folder_.At("pictures")); }

  // The companion saves its pictures where it is started.
  void StartCompanion() {
    const auto here = std::filesystem::current_path();
    std::filesystem::current_path(folder_.At("pictures"));
    companion_.Start(TestArgument("companion"), {}, folder_.At("companion.txt"));
    std::filesystem::current_path(here);
    ASSERT_TRUE(bench::WaitUntil([&] { return companion_.Output().find("waiting") != std::string::npos; },
                                 std::chrono::milliseconds(kPatienceMs)));
  }
  void RunRuntime() {
    const std::string settings =
        folder_.Write("settings.json", R"({"driver_ombrel": {"windowWidth": 1280, "windowHeight": 720}})");
    Program runtime;
    runtime.Start(TestArgument("runtime"),
                  {"--driver", TestArgument("driver"), "--settings", settings, "--frames", "240", "--seconds", "25",
                   "--keep-devices", "--summary", folder_.TextOf("summary.json")},
                  folder_.At("runtime.txt"));
    ASSERT_EQ(runtime.Wait(kPatienceMs), 0U) << runtime.Output() << companion_.Output();
  }

  ombrel::test::ScratchFolder folder_;
  Program companion_;
};

TEST_F(MinimalCompanion, MovesTheHeadAndAControllerAndSavesThreePictures) {
  StartCompanion();
  RunRuntime();
  ASSERT_EQ(companion_.Wait(1000), 0U) << companion_.Output();
  EXPECT_THAT(companion_.Output(), HasSubstr(": opened"));

  const auto summary = nlohmann::json::parse(folder_.Read("summary.json"));
  EXPECT_GT(summary.at("poses"), 30);
  EXPECT_TRUE(std::ranges::any_of(summary.at("devices"), [](const auto& device) {
    return device.at("class") == kControllerClass && device.at("poses") > 30;
  })) << summary.at("devices");

  std::vector<std::string> pictures;
  for (const char* name : {"picture1.bmp", "picture2.bmp", "picture3.bmp"}) {
    pictures.push_back(PixelsOf(folder_.At("pictures") / name));
    const std::string& pixels = pictures.back();
    const std::string first = pixels.substr(0, 4);
    bool showsMore = false;
    for (std::size_t i = 0; i < pixels.size(); i += 4) showsMore = showsMore || pixels.compare(i, 4, first) != 0;
    EXPECT_TRUE(showsMore) << name << " shows one colour";
  }
  // The head turned between them.
  EXPECT_TRUE(pictures[0] != pictures[1]);
  EXPECT_TRUE(pictures[1] != pictures[2]);
}

TEST_F(MinimalCompanion, SaysThatAnotherOneIsRunning) {
  StartCompanion();
  Program second;
  second.Start(TestArgument("companion"), {}, folder_.At("second.txt"));
  EXPECT_EQ(second.Wait(kPatienceMs), 1U);
  EXPECT_THAT(second.Output(), HasSubstr("another companion"));
}

}  // namespace
