#include "link/frame_sharing.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace ombrel {

std::string MakeFrameSharingName() {
  constexpr std::string_view kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  static_assert(kAlphabet.size() == 62);
  std::string name(kFrameSharingNameLength, '\0');
  // Unseeded (compatibility.md, C14): the name is no secret.
  for (char& c : name) c = kAlphabet[static_cast<std::size_t>(std::rand()) % kAlphabet.size()];
  return name;
}

void FrameSharing::Create() {
  frameSharingName_ = MakeFrameSharingName();
  block_.Create(frameSharingName_, kFrameSharingBlockSize);
  frameMutex0_ = CreateNamedMutex(frameSharingName_ + "0");
  frameMutex1_ = CreateNamedMutex(frameSharingName_ + "1");
}

void FrameSharing::WriteSlot(std::int32_t slot, const FramePose& pose) {
  if (block_.Data() == nullptr) return;
  std::memcpy(block_.Data() + SlotOffset(kFrameSharingBlockSize, slot), pose.data(), sizeof(pose));
}

FrameSharingInfo MakeFrameSharingInfo(std::uint32_t processId, const OutputSharing& outputs, const std::string& name) {
  FrameSharingInfo info{};
  info.processId = processId;
  info.sharedHandle0 = static_cast<std::uint32_t>(outputs.handles[0]);
  info.sharedHandle1 = static_cast<std::uint32_t>(outputs.handles[1]);
  std::copy_n(name.begin(), std::min(name.size(), info.sharedName.size() - 1), info.sharedName.begin());
  info.invertY = outputs.invertY;
  return info;
}

}  // namespace ombrel
