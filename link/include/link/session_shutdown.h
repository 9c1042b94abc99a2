#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/process.h"

namespace ombrel {

// Ends the runtime's session, as a ShutdownRequest asks: by ending the process that hosts us when its path begins with
// "vrserver", and the runtime's monitor process otherwise. Says nothing when it could not.
void EndRuntimeSession();

// The decisions behind it.

// A full path begins with its drive, so that the monitor process is ended instead: compatibility.md, C18.
[[nodiscard]] bool IsRuntimeServerPath(std::string_view path);

// The last process named "vrmonitor.exe", letter case included, but for the first of the list: compatibility.md, C19
// and C20.
[[nodiscard]] std::optional<std::uint32_t> FindMonitorProcess(const std::vector<ProcessEntry>& processes);

}  // namespace ombrel
