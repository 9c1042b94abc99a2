// Prints what passed on the pipes, from a recording, whole or while it grows.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>

#include "checker/growing_file.h"
#include "checker/listing.h"
#include "checker/recording.h"

namespace {

constexpr auto kLookAgain = std::chrono::milliseconds(100);

// True when nothing follows.
bool Print(checker::RecordingReader& reader, checker::Listing& listing) {
  bool ended = false;
  while (const auto event = reader.Next()) {
    for (const std::string& line : listing.Take(*event)) std::printf("%s\n", line.c_str());
    ended = ended || event->kind == checker::EventKind::kEnded;
  }
  std::fflush(stdout);
  return ended;
}

int Inspect(const std::filesystem::path& path, checker::Notation notation, bool follow) {
  checker::GrowingFile file(path);
  checker::RecordingReader reader;
  checker::Listing listing(notation);
  for (bool ended = false; !ended;) {
    const auto bytes = file.More();
    reader.Feed(bytes);
    ended = reader.Broken() || Print(reader, listing) || (bytes.empty() && !follow);
    if (bytes.empty() && !ended) std::this_thread::sleep_for(kLookAgain);
  }
  if (file.IsThere() && !reader.Broken()) return 0;
  std::fprintf(stderr, "inspect: %s is no recording\n", path.string().c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::filesystem::path file;
  bool json = false, follow = false;
  CLI::App app("Prints what passed on the pipes, decoded, one message a line");
  app.add_option("recording", file, "driver.recording of a report")->required();
  app.add_flag("--json", json, "A JSON object a line");
  app.add_flag("--follow", follow, "Go on while the recording grows, until the session ends");
  CLI11_PARSE(app, argc, argv);
  return Inspect(file, json ? checker::Notation::kJson : checker::Notation::kText, follow);
}
