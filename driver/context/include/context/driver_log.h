#pragma once

#include <openvr_driver.h>

#include "platform/attributes.h"

namespace ombrel {

// Writes a printf-style message, exactly as it stands, to the runtime's driver log. Messages bring their own "\n" and
// stay below 1024 bytes. May be called from any thread; dropped while no sink is set.
OMBREL_PRINTF_LIKE(1, 2) void Log(const char* format, ...);

// Where messages go: set by the provider's Init, which keeps a sink that is there, and cleared by its Cleanup.
void SetLogSinkIfNone(vr::IVRDriverLog* sink);
void ClearLogSink();

}  // namespace ombrel
