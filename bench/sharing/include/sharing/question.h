#pragma once

#include "sharing/choice.h"

#include <filesystem>
#include <optional>

namespace bench {

// Asks devices of that kind whether they share: a texture with a keyed mutex is made, opened by a second device and by a
// second process, and each draws in its turn what the next has to see. The machine is asked with kOwn; with kStandIn the
// question itself is put to the test. `program` is the second process: any whose main begins with AnswerSharing.
[[nodiscard]] SharingAnswer AskSharing(Sharing kind, const std::filesystem::path& program);

// The second process's part: the exit code when the command line asks for it, nothing otherwise.
[[nodiscard]] std::optional<int> AnswerSharing(int argc, char** argv);

}  // namespace bench
