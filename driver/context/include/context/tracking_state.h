#pragma once

#include <openvr_driver.h>

#include <cstdint>

namespace ombrel {

// What the runtime is told of a device in the tracking state that the companion reports: 0 tracking, 1 out of range, 2
// not connected. Others count as 0 (compatibility.md, C8).
void ApplyTrackingState(std::uint32_t trackingState, vr::DriverPose_t& pose);

}  // namespace ombrel
