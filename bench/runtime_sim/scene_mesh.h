#pragma once

#include <array>
#include <vector>

#include "runtime/pose_matrix.h"

namespace bench {

/// What a surface shows; the number is the slice of the scene's texture.
enum class Surface { NorthWall, EastWall, SouthWall, WestWall, Floor, Ceiling, Crate, Plain, Count };

/// Metres in the world's axes; texture coordinates with the slice as the third; tint as shown on a screen.
struct SceneVertex {
  std::array<float, 3> position;
  std::array<float, 3> texture;
  std::array<float, 3> tint;
};

using Mesh = std::vector<SceneVertex>;  ///< a list of triangles

/// A closed room around the standing place, 8 by 8 metres and 4 high, a different wall in each direction
/// (north is -z), with pillars and crates at several distances.
[[nodiscard]] Mesh BuildRoom();

/// Adds a box of the given half sizes at a pose, each face with the whole surface, faces shaded apart.
void AppendBox(Mesh& mesh, const runtime::PoseMatrix& pose, const std::array<float, 3>& halfSize, Surface surface,
               const std::array<float, 3>& tint);

}  // namespace bench
