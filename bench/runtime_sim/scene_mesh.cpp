#include "scene_mesh.h"

namespace bench {
namespace {

using Vector = std::array<float, 3>;

constexpr float kHalfRoom = 4.0F;
constexpr float kRoomHeight = 4.0F;
constexpr Vector kWhite = {1.0F, 1.0F, 1.0F};

Vector Sum(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }

// A parallelogram: its upper left corner as its viewer sees it, and the ways to the right and down.
void AppendQuad(Mesh& mesh, const Vector& corner, const Vector& right, const Vector& down, Surface surface,
                const Vector& tint, float repeat = 1.0F) {
  const auto slice = static_cast<float>(surface);
  const SceneVertex upperLeft{corner, {0, 0, slice}, tint};
  const SceneVertex upperRight{Sum(corner, right), {repeat, 0, slice}, tint};
  const SceneVertex lowerLeft{Sum(corner, down), {0, repeat, slice}, tint};
  const SceneVertex lowerRight{Sum(Sum(corner, right), down), {repeat, repeat, slice}, tint};
  mesh.insert(mesh.end(), {upperLeft, upperRight, lowerLeft, lowerLeft, upperRight, lowerRight});
}

void AppendShell(Mesh& mesh) {
  constexpr float kSide = 2.0F * kHalfRoom;
  constexpr float kR = kHalfRoom;
  constexpr float kH = kRoomHeight;
  const Vector down = {0, -kH, 0};
  AppendQuad(mesh, {-kR, kH, -kR}, {kSide, 0, 0}, down, Surface::NorthWall, kWhite);
  AppendQuad(mesh, {kR, kH, -kR}, {0, 0, kSide}, down, Surface::EastWall, kWhite);
  AppendQuad(mesh, {kR, kH, kR}, {-kSide, 0, 0}, down, Surface::SouthWall, kWhite);
  AppendQuad(mesh, {-kR, kH, kR}, {0, 0, -kSide}, down, Surface::WestWall, kWhite);
  AppendQuad(mesh, {-kR, 0, -kR}, {kSide, 0, 0}, {0, 0, kSide}, Surface::Floor, kWhite);
  AppendQuad(mesh, {-kR, kH, kR}, {kSide, 0, 0}, {0, 0, -kSide}, Surface::Ceiling, kWhite);
}

runtime::PoseMatrix At(float x, float y, float z, float turnRadians) {
  const double half = 0.5 * static_cast<double>(turnRadians);
  const double place[3] = {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
  // Small angles only: sine and cosine by their series keep the mesh the same on every machine.
  return runtime::PoseFromQuaternion({1.0 - half * half / 2.0, 0.0, half - half * half * half / 6.0, 0.0}, place);
}

}  // namespace

void AppendBox(Mesh& mesh, const runtime::PoseMatrix& pose, const Vector& halfSize, Surface surface,
               const Vector& tint) {
  const auto [x, y, z] = halfSize;
  const struct {
    Vector corner, right, down;
    float shade;
  } faces[] = {
      {{-x, y, z}, {2 * x, 0, 0}, {0, -2 * y, 0}, 1.0F},   // towards +z
      {{x, y, -z}, {-2 * x, 0, 0}, {0, -2 * y, 0}, 1.0F},  // towards -z
      {{x, y, z}, {0, 0, -2 * z}, {0, -2 * y, 0}, 0.8F},   // towards +x
      {{-x, y, -z}, {0, 0, 2 * z}, {0, -2 * y, 0}, 0.8F},  // towards -x
      {{-x, y, -z}, {2 * x, 0, 0}, {0, 0, 2 * z}, 0.95F},  // top
      {{-x, -y, z}, {2 * x, 0, 0}, {0, 0, -2 * z}, 0.5F},  // bottom
  };
  const std::size_t first = mesh.size();
  for (const auto& face : faces) {
    AppendQuad(mesh, face.corner, face.right, face.down, surface,
               {tint[0] * face.shade, tint[1] * face.shade, tint[2] * face.shade});
  }
  for (std::size_t index = first; index < mesh.size(); ++index) {
    const Vector local = mesh[index].position;
    for (std::size_t row = 0; row < 3; ++row) {
      const auto& m = pose.m[row];
      mesh[index].position[row] = m[0] * local[0] + m[1] * local[1] + m[2] * local[2] + m[3];
    }
  }
}

Mesh BuildRoom() {
  Mesh mesh;
  AppendShell(mesh);
  for (const float x : {-2.2F, 2.2F}) {
    for (const float z : {-3.0F, 3.0F}) {
      AppendBox(mesh, At(x, kRoomHeight / 2.0F, z, 0.0F), {0.18F, kRoomHeight / 2.0F, 0.18F}, Surface::Plain,
                {0.75F, 0.7F, 0.6F});
    }
  }
  AppendBox(mesh, At(-0.9F, 0.35F, -2.4F, 0.35F), {0.35F, 0.35F, 0.35F}, Surface::Crate, {1.0F, 0.75F, 0.45F});
  AppendBox(mesh, At(0.8F, 0.25F, -1.6F, -0.2F), {0.25F, 0.25F, 0.25F}, Surface::Crate, {0.6F, 0.85F, 1.0F});
  AppendBox(mesh, At(1.9F, 0.45F, 0.6F, 0.5F), {0.45F, 0.45F, 0.45F}, Surface::Crate, {0.95F, 0.6F, 0.9F});
  AppendBox(mesh, At(-1.8F, 0.3F, 0.9F, -0.4F), {0.3F, 0.3F, 0.3F}, Surface::Crate, {0.7F, 1.0F, 0.6F});
  return mesh;
}

}  // namespace bench
