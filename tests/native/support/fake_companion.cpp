#include "support/fake_companion.h"

#include <cstdlib>

namespace ombrel::test {

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
  const std::uint32_t length = ReadU32(header, 0);
  Message message{ReadU32(header, 4), in.Receive(length)};
  if (message.payload.size() != length) return std::nullopt;
  return message;
}

}  // namespace ombrel::test
