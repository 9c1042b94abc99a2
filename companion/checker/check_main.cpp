// Judges the recordings of a session by the rules of the protocol.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "checker/verdict.h"
#include "report/page.h"

namespace {

constexpr int kBroken = 1, kUnreadable = 2, kNoFrames = 3;

struct Options {
  std::filesystem::path driver;
  std::filesystem::path companion;
  std::filesystem::path json;
  std::filesystem::path html;
  std::filesystem::path pageTemplate;
};

void Write(const std::filesystem::path& file, const std::string& text) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << text;
  if (!stream) throw std::runtime_error("cannot write " + file.string());
}

std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

checker::Session ReadSession(const Options& options, checker::Watched watched) {
  auto events = checker::ReadRecording(options.driver);
  if (watched == checker::Watched::kBothSides) {
    const auto more = checker::ReadRecording(options.companion);
    events.insert(events.end(), more.begin(), more.end());
  }
  return checker::BuildSession(checker::InOrder(std::move(events)));
}

int Check(const Options& options) {
  const auto watched =
      std::filesystem::exists(options.companion) ? checker::Watched::kBothSides : checker::Watched::kDriver;
  const checker::Session session = ReadSession(options, watched);
  const checker::Verdict verdict = checker::VerdictOf(session, watched);
  std::fputs(checker::InText(verdict).c_str(), stdout);
  if (!options.json.empty()) Write(options.json, checker::InJson(verdict, session.begin).dump(2) + "\n");
  if (!options.html.empty()) {
    Write(options.html, report::FillTemplate(ReadText(options.pageTemplate), checker::ForPage(verdict).dump()));
  }
  if (!verdict.IsClean()) return kBroken;
  return verdict.HasFrames() ? 0 : kNoFrames;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app(
      "Judges the recordings of a session by the rules of docs/protocol.md. Ends with 0 when no rule was broken and "
      "frames came, with 1 when one was, with 3 when no frame came");
  app.add_option("--driver", options.driver, "Recording of the driver's side")->required();
  app.add_option("--companion", options.companion,
                 "Recording of the companion's side; without it what it does with textures is not judged");
  app.add_option("--json", options.json, "File for the verdict as JSON");
  auto* const page = app.add_option("--template", options.pageTemplate, "The report's page");
  app.add_option("--html", options.html, "File for the verdict as a page")->needs(page);
  CLI11_PARSE(app, argc, argv);
  try {
    return Check(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "checker: %s\n", error.what());
    return kUnreadable;
  }
}
