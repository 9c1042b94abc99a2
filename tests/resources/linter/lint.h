#pragma once

#include "driver_files.h"
#include "source_facts.h"

namespace ombrel::test {

// Everything that is wrong with a driver's folder, by itself and against what the driver does.
[[nodiscard]] Findings Lint(const std::filesystem::path& folder, const SourceFacts& facts);

// The single rules, each in a file of its name.
void CheckManifest(const DriverFiles& files, Findings& findings);
void CheckReferences(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckSettings(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckProfile(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckBindings(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckRemapping(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckIcons(const DriverFiles& files, Findings& findings);
void CheckLocalization(const DriverFiles& files, const SourceFacts& facts, Findings& findings);
void CheckScripts(const DriverFiles& files, Findings& findings);

}  // namespace ombrel::test
