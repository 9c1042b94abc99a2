#include "lint.h"

namespace ombrel::test {

Findings Lint(const std::filesystem::path& folder, const SourceFacts& facts) {
  Findings findings;
  const DriverFiles files(folder, findings);
  CheckManifest(files, findings);
  CheckReferences(files, facts, findings);
  CheckSettings(files, facts, findings);
  CheckProfile(files, facts, findings);
  CheckBindings(files, facts, findings);
  CheckRemapping(files, facts, findings);
  CheckIcons(files, findings);
  CheckLocalization(files, facts, findings);
  CheckScripts(files, findings);
  return findings;
}

}  // namespace ombrel::test
