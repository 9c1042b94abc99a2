// Prints what passed on the pipes, from a recording, whole or while it grows.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>

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

int Inspect(const std::filesystem::path& file, checker::Notation notation, bool follow) {
  std::ifstream stream(file, std::ios::binary);
  while (!stream && follow) {
    std::this_thread::sleep_for(kLookAgain);
    stream.open(file, std::ios::binary);
  }
  checker::RecordingReader reader;
  checker::Listing listing(notation);
  std::vector<char> buffer(65536);
  for (bool ended = !stream; !ended;) {
    stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(buffer.data());
    const auto count = static_cast<std::size_t>(stream.gcount());
    stream.clear();
    reader.Feed({bytes, count});
    ended = reader.Broken() || Print(reader, listing) || (count == 0 && !follow);
    if (count == 0 && !ended) std::this_thread::sleep_for(kLookAgain);
  }
  if (stream && !reader.Broken()) return 0;
  std::fprintf(stderr, "inspect: %s is no recording\n", file.string().c_str());
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
