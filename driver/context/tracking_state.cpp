#include "context/tracking_state.h"

namespace ombrel {

void ApplyTrackingState(std::uint32_t trackingState, vr::DriverPose_t& pose) {
  switch (trackingState) {
    case 1:
      pose.result = vr::TrackingResult_Running_OutOfRange;
      break;
    case 2:
      pose.result = vr::TrackingResult_Uninitialized;
      break;
    default:
      pose.result = vr::TrackingResult_Running_OK;
      break;
  }
  pose.poseIsValid = pose.result == vr::TrackingResult_Running_OK;
  pose.deviceIsConnected = pose.result != vr::TrackingResult_Uninitialized;
}

}  // namespace ombrel
