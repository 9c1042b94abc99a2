#pragma once

#include <openvr_driver.h>

#include <cstdint>

#include "support/bytes.h"

namespace ombrel::test {

// Poses all of whose parts follow from one number, so that whoever reads one can tell whether it is whole. They turn
// about the vertical axis only, by a good deal from one number to the next.

// The payload of a TrackingUpdate; the formats take turns. The first one brings an orientation and a position.
[[nodiscard]] Bytes HeadUpdate(std::uint32_t number);
// The payload of a ControllerUpdate.
[[nodiscard]] Bytes ControllerUpdate(std::uint32_t id, std::uint32_t number);

// Position and orientation may be of two updates, since most formats bring only one of them; each must be of one.
[[nodiscard]] bool IsWholeHeadPose(const vr::DriverPose_t& pose);
[[nodiscard]] bool IsWholeControllerPose(const vr::DriverPose_t& pose);

}  // namespace ombrel::test
