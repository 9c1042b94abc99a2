#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace bench::floor {

// Bytecode of a vertex shader and a pixel shader.
struct Shaders {
  std::span<const std::byte> vertex, pixel;
};

// The start of a driver with nothing of its own in it: loads a library that does nothing and makes the system calls
// that no start can leave out, once each: the list of processes, the timer's resolution, shared memory, two named
// mutexes, a thread that looks for a pipe, the adapters, a device and four shaders. Undoes it all. Returns the
// nanoseconds that it took, less those that Direct3D needed to make its factory and the device. Throws
// std::runtime_error when the library cannot be loaded.
[[nodiscard]] std::int64_t TimeBareStart(const std::filesystem::path& library, const Shaders& shaders);

}  // namespace bench::floor
