#pragma once

#include <optional>
#include <string>
#include <vector>

#include "doctor/finding.h"

namespace ombrel::doctor {

enum class Task { kCheck, kInstall, kUninstall, kHelp, kVersion, kProbeLoad };

// What the command line asks for.
struct Options {
  Task task = Task::kCheck;
  bool asJson = false;
  bool replace = false;              // with kInstall: take other copies out of the list
  std::optional<bool> pause;         // wait for a key at the end; unset: if the window would close
  std::optional<Language> language;  // unset: the user's
  std::string bundleFolder;          // empty: no bundle
  std::string library;               // with kProbeLoad
};

// Nothing when the arguments, in UTF-8, are not understood.
[[nodiscard]] std::optional<Options> ParseOptions(const std::vector<std::string>& arguments);

[[nodiscard]] std::string Usage();

}  // namespace ombrel::doctor
