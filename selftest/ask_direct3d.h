#pragma once

#include <cstdint>
#include <filesystem>

#include "direct3d.h"
#include "sharing/choice.h"

namespace ombrel::selftest {

// Asks this machine's Direct3D all of it, with the sharing that was decided. `program` is this one: it is the second
// process. What fails ends the questions, and is in the answers. In a process of its own, since a graphics driver may crash.
[[nodiscard]] Direct3DAnswers AskDirect3D(const bench::SharingDecision& sharing, bool isForced,
                                          const std::filesystem::path& program);

// The second process's part in the rules of the keyed mutex; returns only when something is wrong.
[[nodiscard]] int TakeTurns(std::uint32_t handle);

}  // namespace ombrel::selftest
