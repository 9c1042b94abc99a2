#pragma once

#include <functional>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "companion/pipe_server.h"
#include "output_reader.h"

namespace ombrel::test {

// What the program can be told to do. Times are in milliseconds, bytes are lists of numbers. One thread.
class Commands {
 public:
  Commands();

  // Throws what went wrong.
  nlohmann::json Run(const nlohmann::json& command);

 private:
  using Command = std::function<nlohmann::json(const nlohmann::json& arguments)>;

  void AddPipes();
  void AddTextures();
  nlohmann::json NextMessage(std::uint32_t timeoutMs);

  companion::PipeServer pipes_;
  OutputReader outputs_;
  std::map<std::string, Command> commands_;
};

}  // namespace ombrel::test
