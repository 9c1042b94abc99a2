#include "companion/messages.h"

#include <algorithm>
#include <cstring>

namespace companion {

Bytes EncodeMessage(std::uint32_t type, std::span<const std::uint8_t> payload) {
  const OmbrelMessageHeader header{static_cast<std::uint32_t>(payload.size()), type};
  Bytes message(kHeaderBytes + payload.size());
  std::memcpy(message.data(), &header, kHeaderBytes);
  std::copy(payload.begin(), payload.end(), message.begin() + kHeaderBytes);
  return message;
}

Bytes EncodeRecenterRequest() { return EncodeMessage(MessageType::RecenterRequest, {}); }

Bytes EncodeFramerateUpdate(std::uint32_t framesPerSecond) {
  return EncodeMessage(MessageType::FramerateUpdate, AsBytes(OmbrelFramerateUpdate{framesPerSecond}));
}

Bytes EncodeShutdownRequest() { return EncodeMessage(MessageType::ShutdownRequest, {}); }

Bytes EncodeFrameSharingInfo(const FrameSharingInfo& info) {
  OmbrelFrameSharingInfo record{};
  record.processId = info.processId;
  record.sharedHandle0 = info.sharedHandles[0];
  record.sharedHandle1 = info.sharedHandles[1];
  info.name.copy(record.name, sizeof(record.name) - 1);
  record.invertY = info.invertY ? 1 : 0;
  return EncodeMessage(MessageType::FrameSharingInfo, AsBytes(record));
}

Bytes EncodeHapticPulse(const HapticPulse& pulse) {
  const OmbrelHapticPulse record{pulse.controllerId, pulse.timestampMicroseconds, pulse.durationMicroseconds, 0};
  return EncodeMessage(MessageType::HapticPulse, AsBytes(record));
}

std::optional<FrameSharingInfo> DecodeFrameSharingInfo(std::span<const std::uint8_t> payload) {
  if (payload.size() != sizeof(OmbrelFrameSharingInfo)) return std::nullopt;
  const auto record = ReadAs<OmbrelFrameSharingInfo>(payload);
  const auto end = std::find(std::begin(record->name), std::end(record->name), '\0');
  if (end == std::end(record->name)) return std::nullopt;
  return FrameSharingInfo{record->processId,
                          {record->sharedHandle0, record->sharedHandle1},
                          std::string(std::begin(record->name), end),
                          record->invertY != 0};
}

std::optional<HapticPulse> DecodeHapticPulse(std::span<const std::uint8_t> payload) {
  if (payload.size() != sizeof(OmbrelHapticPulse)) return std::nullopt;
  const auto record = ReadAs<OmbrelHapticPulse>(payload);
  return HapticPulse{record->controllerId, record->timestampMicroseconds, record->durationMicroseconds};
}

std::optional<std::uint32_t> DecodeFramerateUpdate(std::span<const std::uint8_t> payload) {
  const auto record = ReadAs<OmbrelFramerateUpdate>(payload);
  if (!record) return std::nullopt;
  return record->framesPerSecond;
}

}  // namespace companion
