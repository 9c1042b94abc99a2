#include "runtime/msvc_calls.h"

#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t kGetPoseSlot = 5;
constexpr std::size_t kComputeDistortionSlot = 6;

// A callee with the other order writes its result over its own object and returns that; say so here
// rather than go on with a broken device.
template <typename Result>
Result Checked(const Result& room, const Result* returned) {
  if (returned != &room) {
    throw std::logic_error("the method did not return the address of its result");
  }
  return room;
}

}  // namespace

vr::DriverPose_t CallGetPose(void* device) {
  using Function = vr::DriverPose_t*(void*, vr::DriverPose_t*);
  vr::DriverPose_t room{};
  return Checked(room, VirtualSlot<Function>(device, kGetPoseSlot)(device, &room));
}

vr::DistortionCoordinates_t CallComputeDistortion(void* display, vr::EVREye eye, float u, float v) {
  using Function = vr::DistortionCoordinates_t*(void*, vr::DistortionCoordinates_t*, vr::EVREye, float, float);
  vr::DistortionCoordinates_t room{};
  return Checked(room, VirtualSlot<Function>(display, kComputeDistortionSlot)(display, &room, eye, u, v));
}

}  // namespace bench
