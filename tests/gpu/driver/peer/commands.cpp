#include "commands.h"

#include <stdexcept>

namespace ombrel::test {

using nlohmann::json;

Commands::Commands() {
  commands_["say hello"] = [](const json&) { return true; };
  AddPipes();
  AddTextures();
}

json Commands::Run(const json& command) {
  const auto verb = command.at("do").get<std::string>();
  const auto found = commands_.find(verb);
  if (found == commands_.end()) throw std::runtime_error("unknown command " + verb);
  return found->second(command);
}

void Commands::AddPipes() {
  commands_["open pipes"] = [this](const json&) { return pipes_.Open(); };
  commands_["close pipes"] = [this](const json&) { return pipes_.Close(), true; };
  commands_["wait for connection"] = [this](const json& its) { return pipes_.WaitForConnection(its.at("timeout")); };
  commands_["send"] = [this](const json& its) { return pipes_.Send(its.at("bytes").get<companion::Bytes>()); };
  commands_["next message"] = [this](const json& its) { return NextMessage(its.at("timeout")); };
}

json Commands::NextMessage(std::uint32_t timeoutMs) {
  const auto received = pipes_.Next(timeoutMs);
  if (!received) return false;
  return {{"type", received->message.type}, {"payload", received->message.payload}};
}

void Commands::AddTextures() {
  commands_["attach"] = [this](const json& its) { return outputs_.Attach(its.at("handles"), its.at("block")), true; };
  commands_["make"] = [this](const json& its) { return outputs_.Make(its.at("pattern")); };
  commands_["paint"] = [this](const json& its) { return outputs_.Paint(its.at("texture"), its.at("pattern")), true; };
  commands_["acquire"] = [this](const json& its) {
    return outputs_.Acquire(its.at("texture"), its.at("key"), its.at("timeout"));
  };
  commands_["release"] = [this](const json& its) { return outputs_.Release(its.at("texture")); };
  commands_["compare"] = [this](const json& its) { return outputs_.Compare(its.at("texture"), its.at("areas")); };
  commands_["slot"] = [this](const json& its) { return outputs_.Slot(its.at("texture")); };
}

}  // namespace ombrel::test
