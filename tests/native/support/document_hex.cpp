#include "support/document_hex.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

std::map<std::string, std::vector<std::uint8_t>> ReadHexBlocks(const std::string& text) {
  static const std::string opening = "```hex ";
  std::map<std::string, std::vector<std::uint8_t>> blocks;
  std::istringstream lines(text);
  std::string line, name;
  while (std::getline(lines, line)) {
    if (line.starts_with(opening)) {
      name = line.substr(opening.size());
      EXPECT_FALSE(blocks.contains(name)) << "two blocks named " << name;
      blocks[name];
    } else if (line.starts_with("```")) {
      name.clear();
    } else if (!name.empty()) {
      std::istringstream words(line);
      unsigned byte = 0;
      while (words >> std::hex >> byte) blocks[name].push_back(static_cast<std::uint8_t>(byte));
      EXPECT_TRUE(words.eof()) << "not hexadecimal: " << line;
    }
  }
  return blocks;
}

std::string ReadDocument() {
  static const std::string option = "--document=";
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (!argument.starts_with(option)) continue;
    std::ifstream file(argument.substr(option.size()));
    EXPECT_TRUE(file.good()) << argument;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
  ADD_FAILURE() << "name the protocol page with " << option;
  return {};
}

std::string AsDocumented(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool lineStart = i == 8 || (i > 8 && (i - 8) % 16 == 0);
    if (i != 0) text += lineStart ? '\n' : ' ';
    char pair[3];
    std::snprintf(pair, sizeof(pair), "%02x", bytes[i]);
    text += pair;
  }
  return text;
}
