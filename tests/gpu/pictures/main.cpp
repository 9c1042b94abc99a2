// Draws layers with the driver's renderer and saves what comes out; with another run's pictures, holds them side by side.
//   layer_pictures --out FOLDER [--compare FOLDER]
// Ends with 1 when a channel of a pixel differs by more than one level of 255, or a picture has no counterpart.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "CLI/CLI.hpp"
#include "layer_pictures.h"
#include "picture.h"

namespace ombrel::test {
namespace {

constexpr int kMostLevels = 1;

std::filesystem::path FileOf(const std::filesystem::path& folder, const NamedPicture& picture, const char* ending) {
  return folder / (picture.name + ending);
}

void Save(const std::filesystem::path& folder, const NamedPicture& picture) {
  const auto& pixels = picture.image.pixels;
  std::ofstream raw(FileOf(folder, picture, ".rgba"), std::ios::binary);
  raw.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
  if (!raw.flush() || !bench::SavePng(picture.image, FileOf(folder, picture, ".png"))) {
    throw std::runtime_error("cannot save " + picture.name);
  }
}

// 256 when the other picture is missing or of another size.
int LargestDifference(const std::filesystem::path& folder, const NamedPicture& picture) {
  std::ifstream file(FileOf(folder, picture, ".rgba"), std::ios::binary);
  const std::vector<char> other{std::istreambuf_iterator<char>(file), {}};
  if (other.size() != picture.image.pixels.size()) return 256;
  int largest = 0;
  for (std::size_t i = 0; i < other.size(); ++i) {
    largest = std::max(largest, std::abs(picture.image.pixels[i] - static_cast<std::uint8_t>(other[i])));
  }
  return largest;
}

int Run(const std::filesystem::path& out, const std::filesystem::path& compare) {
  std::filesystem::create_directories(out);
  bool alike = true;
  for (const NamedPicture& picture : DrawLayerPictures()) {
    Save(out, picture);
    std::printf("%-16s %d x %d", picture.name.c_str(), picture.image.width, picture.image.height);
    if (!compare.empty()) {
      const int difference = LargestDifference(compare, picture);
      alike = alike && difference <= kMostLevels;
      std::printf(", largest difference %d", difference);
    }
    std::printf("\n");
  }
  return alike ? 0 : 1;
}

}  // namespace
}  // namespace ombrel::test

int main(int argc, char** argv) {
  CLI::App app("Draws layers with the driver's renderer and saves or compares what comes out");
  std::filesystem::path out, compare;
  app.add_option("--out", out, "Folder for the pictures")->required();
  app.add_option("--compare", compare, "Folder of another run's pictures");
  CLI11_PARSE(app, argc, argv);
  try {
    return ombrel::test::Run(out, compare);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "layer_pictures: %s\n", error.what());
    return 1;
  }
}
