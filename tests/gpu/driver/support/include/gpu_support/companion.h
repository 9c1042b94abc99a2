#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "companion/image.h"
#include "companion/messages.h"
#include "companion/pose_history.h"
#include "gpu_support/child_process.h"

namespace ombrel::test {

// Part of a picture and what it should show: one colour, or a pattern (see PatternPixel).
struct Area {
  std::string name;
  int x, y, width, height;
  std::optional<bench::Rgba> rgba;
  std::uint8_t pattern = 0;  // without a colour
  int tolerance = 0;         // largest difference of a channel
};

// The companion, as a process of its own named "Ombrel.exe": the environment variable OMBREL_PEER names the program. It
// does nothing but what it is told here, and compares pixels on its own side. Throws std::runtime_error when it cannot
// do what it is told. One thread.
class Companion {
 public:
  Companion();

  // Its end of the link.
  [[nodiscard]] bool OpenPipes();
  void ClosePipes();
  [[nodiscard]] bool WaitForConnection();
  [[nodiscard]] bool WaitForDisconnection();
  [[nodiscard]] bool Send(const bench::Bytes& bytes);
  // Until the driver has read all that was sent.
  void WaitUntilRead();
  [[nodiscard]] std::optional<bench::Message> NextMessage(std::uint32_t timeoutMs);

  // Textures with a keyed mutex, which are then told by their place in the list, and the block of that name, if any.
  // The answer lists {"width", "height", "format"} of each texture.
  nlohmann::json Attach(const std::vector<std::uint64_t>& handles, const std::string& block = {});
  nlohmann::json AttachAnnounced(const bench::FrameSharingInfo& info);
  HRESULT Acquire(int texture, std::uint32_t timeoutMs);
  HRESULT Release(int texture);
  // One line for each area that does not show what it should.
  [[nodiscard]] std::vector<std::string> Compare(int texture, const std::vector<Area>& areas);
  [[nodiscard]] bench::PoseSlot Slot(int texture);

  // Takes the texture as a companion does: waits for it, looks, gives it back. The lines of Compare, or what went wrong.
  [[nodiscard]] std::vector<std::string> Look(int texture, const std::vector<Area>& areas);

  void Kill() { process_.Kill(); }

 private:
  nlohmann::json Do(nlohmann::json command);

  ChildProcess process_;
};

}  // namespace ombrel::test
