#include "options.h"

#include "CLI/CLI.hpp"
#include "sharing/sharing_option.h"

namespace bench {
namespace {

void AddOutputs(CLI::App& app, Options& options) {
  app.add_option("--out", options.out, "Folder for pictures: contact sheet and saved frames");
  app.add_option("--save-every", options.saveEvery, "Save every Nth frame as PNG (needs --out)");
  app.add_option("--save-width", options.saveWidth, "Shrink saved frames to this width");
  app.add_flag("--print-frames", options.printFrames, "Print a line for each frame as soon as it is read");
  app.add_option("--summary", options.summary, "File for the summary as JSON");
  app.add_option("--csv", options.framesCsv, "File with one line per frame read");
  app.add_option("--poses-csv", options.posesCsv, "File with one line per pose sent");
}

void AddEnds(CLI::App& app, Options& options) {
  app.add_option("--seconds", options.seconds, "End so long after the first connection");
  app.add_option("--frames", options.frames, "End after so many frames");
  app.add_flag("--until-disconnect", options.untilDisconnect, "End when the driver goes");
  app.add_option("--connect-timeout", options.connectTimeoutSeconds,
                 "Give up when no driver came within so many seconds");
}

void AddMotion(CLI::App& app, Options& options) {
  app.add_option("--script", options.script, "JSON file of steps to play, instead of an endless sweep");
  app.add_option("--pose-rate", options.poseRate, "Poses per second")->check(CLI::Range(0.1, 10000.0));
  app.add_option("--pose-format", options.poseFormat, "Pose format code")
      ->check(CLI::IsMember({0, 1, 2, 3, 4, 5, 6, 50, 254, 2147483647}));
  app.add_option("--framerate", options.framerate, "Ask for this frame rate at every connection");
}

void AddRequirements(CLI::App& app, Options& options) {
  app.add_option("--require-frames", options.requireFrames, "Fail unless at least so many frames were read");
  app.add_option("--require-matching", options.requireMatching,
                 "Fail unless at least so many frames had a pose that was sent, and none had another");
  app.add_option("--require-named", options.requireNamed, "Fail unless the script got so many pictures that it names");
  app.add_option("--require-haptics", options.requireHaptics, "Fail unless at least so many haptic pulses came");
}

void AddFrames(CLI::App& app, Options& options) {
  app.add_flag("!--no-frames", options.readFrames, "Do not open the output textures");
  AddSharingOption(app, options.sharing);
}

}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app("Stands in for the desktop companion: serves the driver's pipes, turns the head, reads the frames");
  AddMotion(app, options);
  AddEnds(app, options);
  AddOutputs(app, options);
  AddRequirements(app, options);
  AddFrames(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  return std::nullopt;
}

}  // namespace bench
