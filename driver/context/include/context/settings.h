#pragma once

#include <cstdint>

namespace ombrel {

// The driver's section of the runtime's settings store. Read at start-up, on the server thread, and never written.

// 0 for a missing key, and when the runtime offers no settings.
[[nodiscard]] std::int32_t ReadInt32Setting(const char* key);

// `whenUnset` for any settings error; false when the runtime offers no settings.
[[nodiscard]] bool ReadBoolSetting(const char* key, bool whenUnset);

}  // namespace ombrel
