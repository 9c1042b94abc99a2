#include "doctor/options.h"

#include "doctor/paths.h"

namespace ombrel::doctor {
namespace {

struct Flag {
  std::string_view name;
  void (*set)(Options& options);
};

constexpr Flag kFlags[] = {
    {"--json", [](Options& o) { o.asJson = true; }},
    {"--install", [](Options& o) { o.task = Task::kInstall; }},
    {"--uninstall", [](Options& o) { o.task = Task::kUninstall; }},
    {"--replace", [](Options& o) { o.replace = true; }},
    {"--pause", [](Options& o) { o.pause = true; }},
    {"--no-pause", [](Options& o) { o.pause = false; }},
    // As the scripts have always called it.
    {"/quiet", [](Options& o) { o.pause = false; }},
    {"--help", [](Options& o) { o.task = Task::kHelp; }},
    {"--version", [](Options& o) { o.task = Task::kVersion; }},
};

bool SetFlag(Options& options, const std::string& argument) {
  for (const Flag& flag : kFlags) {
    if (!EqualIgnoringCase(flag.name, argument)) continue;
    flag.set(options);
    return true;
  }
  return false;
}

bool SetValue(Options& options, const std::string& name, const std::string& value) {
  if (name == "--bundle") {
    options.bundleFolder = value;
  } else if (name == "--probe-load") {
    options.task = Task::kProbeLoad;
    options.library = value;
  } else if (name == "--language" && (value == "en" || value == "de")) {
    options.language = value == "de" ? Language::kGerman : Language::kEnglish;
  } else {
    return false;
  }
  return !value.empty();
}

}  // namespace

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (SetFlag(options, arguments[i])) continue;
    if (i + 1 == arguments.size() || !SetValue(options, arguments[i], arguments[i + 1])) return std::nullopt;
    ++i;
  }
  const bool isCheck = options.task == Task::kCheck;
  if (options.replace && options.task != Task::kInstall) return std::nullopt;
  if (!isCheck && (options.asJson || !options.bundleFolder.empty())) return std::nullopt;
  return options;
}

std::string Usage() {
  return "ombrel_doctor: tells what stands in the way of a picture. It only reads, but for --install and --uninstall.\n"
         "  --json             the report for programs, without names of people and computers\n"
         "  --bundle FOLDER    also writes what a helper needs into FOLDER, without such names\n"
         "  --language en|de   instead of the language of Windows\n"
         "  --install          has SteamVR take this driver into its list\n"
         "  --install --replace   and takes other copies of it out\n"
         "  --uninstall        takes this driver out of SteamVR's list\n"
         "  --no-pause         does not wait for a key at the end (also /quiet); --pause does\n"
         "  --help, --version\n"
         "Exit codes of a check: 0 well, 1 something was found, 2 it could not look.\n";
}

}  // namespace ombrel::doctor
