#pragma once

#include <openvr_driver.h>

#include "link/wire.h"

namespace ombrel {

// Puts a record's pose into `pose`: position, rotation (a half-turn about an axis gives the zero quaternion), velocity,
// acceleration and status. Fields that records say nothing about are left alone.
void ApplyControllerPose(const ControllerUpdate& record, vr::DriverPose_t& pose);

}  // namespace ombrel
