#include "commands.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace ombrel::test {
namespace {

using nlohmann::json;

bench::Bytes FromHex(const std::string& text) {
  bench::Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

std::string ToHex(const bench::Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte));
    text += digits.data();
  }
  return text;
}

}  // namespace

Commands::Commands() : pipes_(bench::PipeServerOptions{}) {}

json Commands::Run(const json& command) {
  const auto verb = command.at("do").get<std::string>();
  json answer = RunPipes(verb, command);
  if (answer.is_null()) answer = RunTextures(verb, command);
  if (answer.is_null()) throw std::runtime_error("unknown command " + verb);
  return answer;
}

json Commands::RunPipes(const std::string& verb, const json& command) {
  if (verb == "say hello") return true;
  if (verb == "open pipes") return pipes_.Open();
  if (verb == "close pipes") {
    pipes_.Close();
    return true;
  }
  if (verb == "wait for connection") return pipes_.WaitForConnection(command.at("timeout"));
  if (verb == "wait for disconnection") return pipes_.WaitForDisconnection(command.at("timeout"));
  if (verb == "send") return pipes_.Send(FromHex(command.at("bytes")));
  if (verb == "flush") {
    pipes_.Flush();
    return true;
  }
  if (verb == "next message") return NextMessage(command.at("timeout"));
  return {};
}

json Commands::NextMessage(std::uint32_t timeoutMs) {
  const auto received = pipes_.Next(timeoutMs);
  if (!received) return false;
  return {{"connection", received->connection},
          {"type", received->message.type},
          {"payload", ToHex(received->message.payload)}};
}

json Commands::RunTextures(const std::string& verb, const json& command) {
  if (verb == "attach") return outputs_.Attach(command.at("handles"), command.at("block"));
  if (verb == "acquire") return outputs_.Acquire(command.at("texture"), command.at("timeout"));
  if (verb == "release") return outputs_.Release(command.at("texture"));
  if (verb == "compare") return outputs_.Compare(command.at("texture"), command.at("areas"));
  if (verb == "slot") return outputs_.Slot(command.at("texture"));
  return {};
}

}  // namespace ombrel::test
