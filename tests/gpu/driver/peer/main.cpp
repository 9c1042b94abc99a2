// A companion that does as it is told: reads one command a line, as JSON, from standard input, and answers each with
// one line of JSON on standard output. "do" names the command; commands.cpp has them all.
#include <exception>
#include <iostream>
#include <string>

#include "commands.h"

int main() {
  ombrel::test::Commands commands;
  for (std::string line; std::getline(std::cin, line);) {
    nlohmann::json answer;
    try {
      answer = commands.Run(nlohmann::json::parse(line));
    } catch (const std::exception& error) {
      answer = {{"error", error.what()}};
    }
    std::cout << answer.dump() << std::endl;
  }
  return 0;
}
