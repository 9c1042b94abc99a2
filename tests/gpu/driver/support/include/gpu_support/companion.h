#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/child_process.h"
#include "companion/messages.h"
#include "companion/pose_history.h"
#include "picture/image.h"

namespace ombrel::test {

// Part of a picture and what it should show: one colour, or a pattern (see bench::Pattern).
struct Area {
  std::string name;
  int x, y, width, height;
  std::optional<bench::Rgba> rgba;
  std::uint8_t pattern = 0;  // without a colour
  int tolerance = 0;         // largest difference of a channel
};

// An eye's half, of that size, of a picture with both eyes side by side, `rim` pixels away from its edges.
[[nodiscard]] Area EyeArea(const std::string& name, int eye, int width, int height, int rim, const bench::Rgba& rgba,
                           int tolerance);

// The companion, as a process of its own named "Ombrel.exe": the environment variable OMBREL_PEER names the program. It
// does nothing but what it is told here, and compares pixels on its own side. Throws std::runtime_error when it cannot
// do what it is told. One thread at a time.
class Companion {
 public:
  Companion();

  // Its end of the link.
  [[nodiscard]] bool OpenPipes();
  void ClosePipes();
  [[nodiscard]] bool WaitForConnection();
  [[nodiscard]] bool Send(const companion::Bytes& bytes);
  [[nodiscard]] std::optional<companion::Message> NextMessage(std::uint32_t timeoutMs);

  // Textures with a keyed mutex, which are then told by their place in the list, and the block of that name, if any.
  void Attach(const std::vector<std::uint64_t>& handles, const std::string& block = {});
  // Makes such a texture itself, the only one then, with a pattern in it. Its shared handle.
  std::uint32_t MakeTexture(std::uint8_t pattern);
  // Draws a pattern into a texture that it holds.
  void Paint(int texture, std::uint8_t pattern);
  HRESULT Acquire(int texture, std::uint32_t timeoutMs, std::uint64_t key = 0);
  HRESULT Release(int texture);
  [[nodiscard]] companion::PoseSlot Slot(int texture);

  // Takes the texture as a companion does: waits for it, looks, gives it back. One line for each area that does not show
  // what it should, or what went wrong.
  [[nodiscard]] std::vector<std::string> Look(int texture, const std::vector<Area>& areas);

  // Ends it as it ends itself, or on the spot, as a crash would.
  void End();
  void Kill() { process_.Kill(); }

 private:
  nlohmann::json Do(const nlohmann::json& command);
  std::string ReadLine();

  bench::ChildProcess process_;
};

}  // namespace ombrel::test
