// The pages for players quote what the driver logs and name what it can be told.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>

#include "paths.h"
#include "source_facts.h"

namespace ombrel::test {
namespace {

std::string Page(const std::string& name) {
  std::ifstream stream(SourceRoot() / "docs" / name);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// The lines of the blocks that are fenced as logs.
std::vector<std::string> QuotedLogLines(const std::string& page) {
  std::vector<std::string> lines;
  std::istringstream stream(page);
  bool isLog = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("```")) {
      isLog = line == "```log";
    } else if (isLog) {
      lines.push_back(line);
    }
  }
  return lines;
}

// A format stands for the lines that it prints: %d a number, %s anything.
std::regex LinesOf(const std::string& format) {
  static const std::regex kSpecial(R"([.*+?^$(){}|\[\]\\])");
  std::string pattern = std::regex_replace(format, kSpecial, R"(\$&)");
  pattern = std::regex_replace(pattern, std::regex("%d"), "-?[0-9]+");
  pattern = std::regex_replace(pattern, std::regex("%f"), "-?[0-9]+\\.[0-9]+");
  return std::regex(std::regex_replace(pattern, std::regex("%s"), ".+"));
}

TEST(DocumentationTest, EveryQuotedLogLineIsOneOfTheDrivers) {
  const SourceFacts facts = ScanSources(SourceRoot());
  const std::vector<std::string> lines = QuotedLogLines(Page("troubleshooting.md"));
  EXPECT_GE(lines.size(), 10U);
  for (const std::string& line : lines) {
    const auto prints = [&](const std::string& format) { return std::regex_match(line, LinesOf(format)); };
    EXPECT_TRUE(std::ranges::any_of(facts.logFormats, prints)) << line;
  }
}

TEST(DocumentationTest, EverySettingIsExplained) {
  const std::string page = Page("install.md");
  for (const auto& [key, type] : ScanSources(SourceRoot()).settings) {
    EXPECT_THAT(page, testing::HasSubstr("`" + key + "`"));
  }
}

}  // namespace
}  // namespace ombrel::test
