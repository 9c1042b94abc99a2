#pragma once

#include <openvr_driver.h>

#include "link/wire.h"

namespace ombrel {

// The controller's pose as the runtime takes it. What a record says nothing about is zero.
[[nodiscard]] vr::DriverPose_t BuildControllerPose(const ControllerUpdate& record);

}  // namespace ombrel
