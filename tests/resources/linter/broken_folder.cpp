#include "broken_folder.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>

#include "paths.h"

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;

fs::path NewFolder() {
  static const unsigned kRun = std::random_device()();
  static std::atomic<int> count = 0;
  return fs::temp_directory_path() / ("ombrel_lint_" + std::to_string(kRun) + "_" + std::to_string(++count));
}

// Scanned once: it takes longer than all else.
const SourceFacts& FactsOfTheDriver() {
  static const SourceFacts kFacts = ScanSources(SourceRoot());
  return kFacts;
}

}  // namespace

BrokenFolder::BrokenFolder() : facts(FactsOfTheDriver()), folder_(NewFolder()) {
  fs::copy(DriverFolder(), folder_, fs::copy_options::recursive);
}

BrokenFolder::~BrokenFolder() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void BrokenFolder::Edit(const std::string& file, const std::function<void(nlohmann::json&)>& change) const {
  nlohmann::json document = nlohmann::json::parse(Read(file));
  change(document);
  Write(file, document.dump(2));
}

void BrokenFolder::ReplaceText(const std::string& file, const std::string& old, const std::string& with) const {
  std::string text = Read(file);
  const std::size_t at = text.find(old);
  ASSERT_NE(at, std::string::npos) << old << " is not in " << file;
  Write(file, text.replace(at, old.size(), with));
}

void BrokenFolder::Write(const std::string& file, const std::string& bytes) const {
  std::ofstream(folder_ / file, std::ios::binary) << bytes;
}

std::string BrokenFolder::Read(const std::string& file) const {
  std::ifstream stream(folder_ / file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void BrokenFolder::ExpectFault(const std::string& finding) const { ExpectFaults({finding}); }

void BrokenFolder::ExpectFaults(const std::vector<std::string>& findings) const {
  std::vector<testing::Matcher<std::string>> matchers;
  for (const std::string& finding : findings) matchers.emplace_back(testing::HasSubstr(finding));
  EXPECT_THAT(Found(), testing::UnorderedElementsAreArray(matchers));
}

}  // namespace ombrel::test
