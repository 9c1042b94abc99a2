#pragma once

#include "companion/controller_record.h"

namespace bench {

// Seconds after which a tour begins again.
inline constexpr double kControllerTourSeconds = 8;

// A controller on a tour through every input: each button pressed in turn, the trackpad touched and circled,
// the trigger pulled and let go, while the controller moves on a circle before the user.
// `side` is -1 for the left hand and +1 for the right hand.
companion::ControllerRecord ControllerTour(std::uint32_t controllerId, float side, double seconds);

}  // namespace bench
