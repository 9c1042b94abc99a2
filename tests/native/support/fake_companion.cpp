#include "support/fake_companion.h"

#include <cstdlib>

namespace ombrel::test {
namespace {

std::uint32_t LittleU32(std::span<const std::byte> bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value |= std::to_integer<std::uint32_t>(bytes[i]) << (8 * i);
  return value;
}

}  // namespace

PipeFolder::PipeFolder() { setenv("OMBREL_PIPE_DIR", folder_.TextOf("").c_str(), 1); }

void FakeCompanion::Offer() {
  in.Offer();
  out.Offer();
}

bool FakeCompanion::Accept() { return in.Accept() && out.Accept(); }

bool FakeCompanion::Connect() {
  Offer();
  return Accept();
}

void FakeCompanion::Disconnect() {
  in.Disconnect();
  out.Disconnect();
}

bool FakeCompanion::Send(std::uint32_t type, std::span<const std::byte> payload) const {
  return out.Send(Framed(type, payload));
}

bool FakeCompanion::SendPose(float x, float y, float z, float w) const {
  return Send(4, Bytes().F32({x, y, z, w, 0.25F, 1.5F, -0.75F}).U32(4));
}

std::optional<FakeCompanion::Message> FakeCompanion::Receive() const {
  const std::vector<std::byte> header = in.Receive(8);
  if (header.size() != 8) return std::nullopt;
  const std::uint32_t length = LittleU32(header);
  Message message{LittleU32(std::span(header).subspan(4)), in.Receive(length)};
  if (message.payload.size() != length) return std::nullopt;
  return message;
}

}  // namespace ombrel::test
