#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// The named example blocks of the protocol page: lines between "```hex NAME" and "```", bytes as hexadecimal pairs.
std::map<std::string, std::vector<std::uint8_t>> ReadHexBlocks(const std::string& text);

// The page that the command line named with --document=; fails the test when it cannot be read.
std::string ReadDocument();

// Bytes as the page writes them: eight of the header, then sixteen a line.
std::string AsDocumented(const std::vector<std::uint8_t>& bytes);
