#include "companion/messages.h"

#include <algorithm>

namespace bench {

Bytes EncodeMessage(std::uint32_t type, std::span<const std::uint8_t> payload) {
  ByteWriter writer;
  writer.Put(static_cast<std::uint32_t>(payload.size()));
  writer.Put(type);
  writer.PutBytes(payload);
  return writer.Take();
}

Bytes EncodeRecenterRequest() { return EncodeMessage(MessageType::RecenterRequest, {}); }

Bytes EncodeFramerateUpdate(std::uint32_t framesPerSecond) {
  ByteWriter payload;
  payload.Put(framesPerSecond);
  return EncodeMessage(MessageType::FramerateUpdate, payload.Take());
}

Bytes EncodeShutdownRequest() { return EncodeMessage(MessageType::ShutdownRequest, {}); }

Bytes EncodeFrameSharingInfo(const FrameSharingInfo& info) {
  ByteWriter payload;
  payload.Put(info.processId);
  payload.Put(info.sharedHandles[0]);
  payload.Put(info.sharedHandles[1]);
  const std::size_t length = std::min(info.name.size(), kSharingNameBytes - 1);
  for (std::size_t i = 0; i < length; ++i) payload.Put(static_cast<std::uint8_t>(info.name[i]));
  payload.PutZeros(kSharingNameBytes - length);
  payload.Put(static_cast<std::uint8_t>(info.invertY ? 1 : 0));
  payload.PutZeros(3);
  return EncodeMessage(MessageType::FrameSharingInfo, payload.Take());
}

Bytes EncodeHapticPulse(const HapticPulse& pulse) {
  ByteWriter payload;
  payload.Put(pulse.controllerId);
  payload.Put(pulse.timestampMicroseconds);
  payload.Put(pulse.durationMicroseconds);
  payload.PutZeros(2);
  return EncodeMessage(MessageType::HapticPulse, payload.Take());
}

std::optional<FrameSharingInfo> DecodeFrameSharingInfo(std::span<const std::uint8_t> payload) {
  if (payload.size() != kFrameSharingInfoBytes) return std::nullopt;
  ByteReader reader(payload);
  FrameSharingInfo info;
  info.processId = reader.Get<std::uint32_t>();
  info.sharedHandles[0] = reader.Get<std::uint32_t>();
  info.sharedHandles[1] = reader.Get<std::uint32_t>();
  const auto name = payload.subspan(12, kSharingNameBytes);
  const auto end = std::find(name.begin(), name.end(), std::uint8_t{0});
  if (end == name.end()) return std::nullopt;
  info.name.assign(name.begin(), end);
  info.invertY = payload[12 + kSharingNameBytes] != 0;
  return info;
}

std::optional<HapticPulse> DecodeHapticPulse(std::span<const std::uint8_t> payload) {
  if (payload.size() != kHapticPulseBytes) return std::nullopt;
  ByteReader reader(payload);
  HapticPulse pulse;
  pulse.controllerId = reader.Get<std::uint32_t>();
  pulse.timestampMicroseconds = reader.Get<std::uint32_t>();
  pulse.durationMicroseconds = reader.Get<std::uint16_t>();
  return pulse;
}

std::optional<std::uint32_t> DecodeFramerateUpdate(std::span<const std::uint8_t> payload) {
  ByteReader reader(payload);
  const auto framesPerSecond = reader.Get<std::uint32_t>();
  if (!reader.Good()) return std::nullopt;
  return framesPerSecond;
}

}  // namespace bench
