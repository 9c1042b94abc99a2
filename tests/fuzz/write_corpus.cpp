// Writes the streams that the corpus begins with: write_fuzz_corpus --document=PAGE FOLDER
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "seeds.h"
#include "support/document_hex.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::filesystem::path folder = argv[argc - 1];
  const auto shown = ReadHexBlocks(ReadDocument());
  if (argc != 3 || shown.empty() || !std::filesystem::is_directory(folder)) {
    std::cerr << "write_fuzz_corpus --document=PAGE FOLDER\n";
    return 1;
  }
  for (const auto& [name, bytes] : ombrel::test::MakeSeeds(shown)) {
    std::ofstream file(folder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  return 0;
}
