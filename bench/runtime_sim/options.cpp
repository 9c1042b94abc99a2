#include "options.h"

#include <map>

#include <CLI/CLI.hpp>

#include "sharing/sharing_option.h"

namespace bench {
namespace {

void AddSession(CLI::App& app, SimulationOptions& options) {
  static const std::map<std::string, Mode> kModes = {
      {"auto", Mode::Automatic}, {"direct", Mode::Direct}, {"virtual", Mode::Virtual}};
  app.add_option("--driver", options.driver, "The driver's folder, or its library")->required();
  app.add_option("--settings", options.settings, "File of settings that lie over the driver's defaults");
  app.add_option("--mode", options.mode, "How frames are handed over: auto, direct or virtual")
      ->transform(CLI::CheckedTransformer(kModes));
  app.add_option("--fps", options.fps, "Frames per second, instead of the display rate that the driver reports");
  app.add_flag(
      "--keep-devices", options.keepDevices,
      "Never let go of Direct3D devices: for Wine with WINE_D3D_CONFIG=csmt=0x0, which hangs when it destroys them");
  AddSharingOption(app, options.sharing);
  app.add_option("--haptics", options.haptics,
                 "JSON list of pulses: at, every, controller, duration, frequency, amplitude");
}

void AddEnds(CLI::App& app, SimulationOptions& options) {
  app.add_option("--seconds", options.seconds, "End after so many seconds of frames (0: on Ctrl+C)");
  app.add_option("--frames", options.frames, "End after so many frames");
  app.add_option("--require-frames", options.requireFrames, "Fail unless at least so many frames were presented");
}

void AddOutputs(CLI::App& app, SimulationOptions& options) {
  app.add_option("--csv", options.framesCsv, "File with one line per frame presented");
  app.add_option("--poses-csv", options.posesCsv, "File with one line per head pose that came");
  app.add_option("--summary", options.summary, "File for the summary as JSON");
  app.add_option("--record", options.record, "File with every call of the driver, one JSON object a line");
  app.add_option("--driver-log", options.driverLog, "File for the driver's log");
  app.add_flag("--quiet", options.quiet, "Do not print the driver's log");
}

}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, SimulationOptions& options) {
  CLI::App app("Stands in for the VR runtime: loads a driver, runs its devices, renders a scene from its poses");
  AddSession(app, options);
  AddEnds(app, options);
  AddOutputs(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return std::nullopt;
}

}  // namespace bench
