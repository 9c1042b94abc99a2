#pragma once

#include <nlohmann/json.hpp>

#include "companion/pipe_server.h"
#include "output_reader.h"

namespace ombrel::test {

// What the program can be told to do. Times are in milliseconds, bytes are hexadecimal text. One thread.
class Commands {
 public:
  Commands();

  // Throws what went wrong.
  nlohmann::json Run(const nlohmann::json& command);

 private:
  nlohmann::json RunPipes(const std::string& verb, const nlohmann::json& command);
  nlohmann::json RunTextures(const std::string& verb, const nlohmann::json& command);
  nlohmann::json NextMessage(std::uint32_t timeoutMs);

  bench::PipeServer pipes_;
  OutputReader outputs_;
};

}  // namespace ombrel::test
