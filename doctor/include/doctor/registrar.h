#pragma once

#include <optional>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/machine.h"

namespace ombrel::doctor {

// The only things that the doctor ever changes: what the runtime's own program changes for it, and files that an older
// version left in the driver's folder.
class Hands {
 public:
  virtual ~Hands() = default;

  // Runs a program to its end and returns its exit code, nothing when it does not start.
  virtual std::optional<int> Run(const std::string& program, const std::vector<std::string>& arguments) = 0;
  virtual bool Delete(const std::string& file) = 0;
  // Whether a program has the file open in a way that keeps it from being replaced.
  virtual bool IsInUse(const std::string& file) = 0;
};

enum class RegistrarCode {
  kDone = 0,
  kIncomplete = 1,
  kNoRegistry = 2,
  kNoRuntime = 3,
  kNoProgram = 4,
  kProgramFailed = 5,
  kInUse = 6,
  kOtherCopyFirst = 7,
};

struct RegistrarResult {
  RegistrarCode code = RegistrarCode::kDone;
  std::string text;  // for people
};

// Has the runtime take the driver's folder into its list; with replace, take every other copy of the driver out first.
[[nodiscard]] RegistrarResult Install(Machine& machine, Hands& hands, bool replace, Language language);
[[nodiscard]] RegistrarResult Uninstall(Machine& machine, Hands& hands, Language language);

}  // namespace ombrel::doctor
