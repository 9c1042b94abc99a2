#include "options.h"

#include <algorithm>
#include <set>

#include <CLI/CLI.hpp>

#include "sharing/sharing_option.h"

namespace ombrel::selftest {

bool Options::Has(const char* part) const { return parts.empty() || std::ranges::find(parts, part) != parts.end(); }

std::vector<SessionPlan> Options::Sessions() const {
  constexpr double kSeconds = 8, kBriefSeconds = 5;
  std::vector<SessionPlan> plans;
  if (!Has("sessions")) return plans;
  for (const char* mode : {"direct", "virtual"}) {
    for (const int fps : {60, 72, 90, 120}) {
      if (isBrief && fps != 60) continue;
      plans.push_back({mode, fps, isBrief ? kBriefSeconds : kSeconds});
    }
  }
  return plans;
}

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app("Tests the driver on this machine, without SteamVR, and writes report.html and report.json");
  const std::set<std::string> parts(std::begin(kParts), std::end(kParts));
  app.add_option("--out", options.out, "Folder for the report")->check(CLI::ExistingDirectory);
  app.add_flag("--brief", options.isBrief, "One session in each mode and two faults only");
  app.add_option("--only", options.parts, "These parts only")->check(CLI::IsMember(parts));
  app.add_flag("--pause", options.isWaitingForKey, "Wait for a key at the end");
  bench::AddSharingOption(app, options.sharing);
  // What this program calls itself with.
  app.add_option("--ask-direct3d", options.askDirect3D)->group("");
  app.add_option("--take-turns", options.takeTurns)->group("");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 1;
  }
  return std::nullopt;
}

}  // namespace ombrel::selftest
