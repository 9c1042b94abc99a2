#include "companion/controller_record.h"

#include "companion/messages.h"

namespace bench {

Bytes EncodeControllerUpdate(const ControllerRecord& record) {
  ByteWriter payload;
  payload.Put(record.controllerId);
  payload.Put(record.trackingState);
  payload.PutZeros(8);
  for (const float value : record.pose) payload.PutFloat(value);
  payload.PutZeros(16);
  payload.Put(record.packetNumber);
  payload.PutZeros(4);
  payload.Put(record.pressedButtons);
  payload.Put(record.touchedButtons);
  for (const Axis& axis : record.axes) {
    payload.PutFloat(axis.x);
    payload.PutFloat(axis.y);
  }
  for (const double value : record.acceleration) payload.PutDouble(value);
  for (const double value : record.velocity) payload.PutDouble(value);
  return EncodeMessage(MessageType::ControllerUpdate, payload.Take());
}

std::optional<ControllerRecord> DecodeControllerUpdate(std::span<const std::uint8_t> payload) {
  ByteReader reader(payload);
  ControllerRecord record;
  record.controllerId = reader.Get<std::uint32_t>();
  record.trackingState = reader.Get<std::uint32_t>();
  reader.Skip(8);
  for (float& value : record.pose) value = reader.GetFloat();
  reader.Skip(16);
  record.packetNumber = reader.Get<std::uint32_t>();
  reader.Skip(4);
  record.pressedButtons = reader.Get<std::uint64_t>();
  record.touchedButtons = reader.Get<std::uint64_t>();
  for (Axis& axis : record.axes) {
    axis.x = reader.GetFloat();
    axis.y = reader.GetFloat();
  }
  for (double& value : record.acceleration) value = reader.GetDouble();
  for (double& value : record.velocity) value = reader.GetDouble();
  if (!reader.Good()) return std::nullopt;
  return record;
}

}  // namespace bench
