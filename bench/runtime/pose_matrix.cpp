#include "runtime/pose_matrix.h"

namespace bench::runtime {

PoseMatrix IdentityPose() { return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}}; }

PoseMatrix PoseFromQuaternion(const vr::HmdQuaternion_t& rotation, const double (&translation)[3]) {
  const auto [w, x, y, z] = rotation;
  const double rows[3][4] = {{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y), translation[0]},
                             {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x), translation[1]},
                             {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y), translation[2]}};
  PoseMatrix matrix{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      matrix.m[row][column] = static_cast<float>(rows[row][column]);
    }
  }
  return matrix;
}

PoseMatrix Multiply(const PoseMatrix& left, const PoseMatrix& right) {
  PoseMatrix product{};
  MultiplyRows(left.m, right, product.m);
  return product;
}

PoseMatrix InvertRigid(const PoseMatrix& pose) {
  PoseMatrix inverse{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      inverse.m[row][column] = pose.m[column][row];
      inverse.m[row][3] -= pose.m[column][row] * pose.m[column][3];
    }
  }
  return inverse;
}

PoseMatrix WorldFromHead(const vr::DriverPose_t& pose) {
  const PoseMatrix worldFromDriver =
      PoseFromQuaternion(pose.qWorldFromDriverRotation, pose.vecWorldFromDriverTranslation);
  const PoseMatrix driver = PoseFromQuaternion(pose.qRotation, pose.vecPosition);
  const PoseMatrix driverFromHead = PoseFromQuaternion(pose.qDriverFromHeadRotation, pose.vecDriverFromHeadTranslation);
  return Multiply(Multiply(worldFromDriver, driver), driverFromHead);
}

}  // namespace bench::runtime
