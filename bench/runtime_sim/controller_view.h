#pragma once

#include "runtime/fake_runtime.h"
#include "runtime/runtime_session.h"
#include "scene_mesh.h"

namespace bench {

/// The controllers as the scene shows them: a wand at each valid pose, coloured by the button that is held
/// (trigger red, grip green, trackpad blue, menu magenta, system yellow, a touched trackpad cyan, else grey),
/// with a dot where the thumb lies and a trigger that reddens as it is pulled. Callable from any thread.
[[nodiscard]] Mesh BuildControllers(FakeRuntime& runtime, const RuntimeSession& session);

}  // namespace bench
