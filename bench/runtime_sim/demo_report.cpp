// Lays the files of the stand-in runtime beside those of the stand-in companion: a line of figures for each session, and a
// page that shows them all.

#include <cstdio>
#include <exception>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "base/text_file.h"
#include "report/page.h"
#include "session_report.h"

namespace bench {
namespace {

using Json = nlohmann::ordered_json;

struct Options {
  std::vector<std::pair<std::string, std::filesystem::path>> sessions;
  std::vector<std::pair<std::string, std::string>> facts;
  std::filesystem::path pageTemplate;
  std::filesystem::path out;
};

Json MakeReport(const Options& options) {
  Json facts = Json::array();
  for (const auto& [name, value] : options.facts) {
    facts.push_back({{"name", name}, {"value", value}});
  }
  Json verdicts = Json::array();
  Json sections = Json::array();
  for (const auto& [mode, folder] : options.sessions) {
    SessionReport session = ReportOf(mode, folder);
    std::printf("summary: %s: %s\n", mode.c_str(), session.line.c_str());
    verdicts.insert(verdicts.end(), session.verdicts.begin(), session.verdicts.end());
    sections.push_back(std::move(session.section));
  }
  return {{"title", "A session with the driver"}, {"subtitle", "between stand-ins of the runtime and of the companion"},
          {"verdict", Overall(verdicts)},         {"facts", std::move(facts)},
          {"verdicts", std::move(verdicts)},      {"sections", std::move(sections)}};
}

int Main(int argc, char** argv) {
  CLI::App app(
      "Prints a line of figures of each session, and writes a page of all of them: report.html and report.json");
  Options options;
  app.add_option("--session", options.sessions, "A title, and the folder with the files of both ends; may be repeated")
      ->required();
  app.add_option("--fact", options.facts, "A name and a value for the page; may be repeated");
  app.add_option("--template", options.pageTemplate, "The page without a report")->required();
  app.add_option("--out", options.out, "Folder for the page")->required();
  CLI11_PARSE(app, argc, argv);
  const Json report = MakeReport(options);
  const std::string json = report.dump();
  WriteText(options.out / "report.json", json + '\n');
  WriteText(options.out / "report.html", report::FillTemplate(ReadText(options.pageTemplate), json));
  return report["verdict"] == "good" ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "report: %s\n", error.what());
    return 1;
  }
}
