#include "runtime/small_picture.h"

namespace bench {

nlohmann::json SmallPictureSettings(int hmdMode) {
  return {{"driver_ombrel",
           {{"fakeSensorEnabled", false},
            {"hmdMode", hmdMode},
            {"windowWidth", 2 * kSmallEyeWidth},
            {"windowHeight", kSmallEyeHeight},
            {"renderScale", 100},
            {"RotationOffsetXDeg", 0},
            {"RotationOffsetYDeg", 0},
            {"RotationOffsetZDeg", 0}}}};
}

}  // namespace bench
