#pragma once

#include <openvr_driver.h>

#include <cstdint>

#include "link/head_pose_tracker.h"
#include "link/quaternion.h"

namespace ombrel {

// The user's fixed turns of the headset.
struct RotationOffsets {
  Quaternion rotationOffsetXZ;  // pitch and roll, applied on the right
  Quaternion rotationOffsetY;   // yaw, applied on the left: see compatibility.md, C9
};

// From whole degrees about each axis.
[[nodiscard]] RotationOffsets MakeRotationOffsets(std::int32_t xDegrees, std::int32_t yDegrees, std::int32_t zDegrees);

// The headset's pose as the runtime takes it: rotationOffsetY ⊗ orientation ⊗ rotationOffsetXZ, in single precision and
// then widened. Before any tracking data a head stands upright at 1.7 m, facing forward.
[[nodiscard]] vr::DriverPose_t BuildHeadPose(const LinkPoseRecord& head, bool hasTrackingData,
                                             const RotationOffsets& offsets);

}  // namespace ombrel
