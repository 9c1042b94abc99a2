// Draws layers with the driver's renderer, holds what comes out beside what was worked out, and saves it; with another
// run's pictures, holds them side by side.
//   layer_pictures --out FOLDER [--compare FOLDER]
// Ends with 1 when a channel of a pixel differs by more than its scene allows, by more than one level of 255 from the other
// run's, or when a picture has no counterpart.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "CLI/CLI.hpp"
#include "layer_pictures.h"
#include "picture/comparison.h"
#include "picture/drawing.h"

namespace ombrel::selftest {
namespace {

constexpr int kMostLevels = 1;

std::filesystem::path FileOf(const std::filesystem::path& folder, const LayerPicture& picture) {
  return folder / (picture.scene.name + ".png");
}

int Run(const std::filesystem::path& out, const std::filesystem::path& compare) {
  std::filesystem::create_directories(out);
  bool alike = true;
  for (const LayerPicture& picture : DrawLayerPictures()) {
    const std::string& name = picture.scene.name;
    if (!bench::SavePng(picture.image, FileOf(out, picture))) throw std::runtime_error("cannot save " + name);
    const int wrong = DifferenceInside(picture.image, ExpectedPicture(picture.scene));
    alike = alike && wrong <= picture.scene.tolerance;
    std::printf("%-16s %d x %d, %d from what was worked out", name.c_str(), picture.image.width, picture.image.height,
                wrong);
    if (!compare.empty()) {
      const int difference = bench::LargestDifference(picture.image, bench::LoadPng(FileOf(compare, picture)));
      alike = alike && difference <= kMostLevels;
      std::printf(", largest difference %d", difference);
    }
    std::printf("\n");
  }
  return alike ? 0 : 1;
}

}  // namespace
}  // namespace ombrel::selftest

int main(int argc, char** argv) {
  CLI::App app("Draws layers with the driver's renderer and saves or compares what comes out");
  std::filesystem::path out, compare;
  app.add_option("--out", out, "Folder for the pictures")->required();
  app.add_option("--compare", compare, "Folder of another run's pictures");
  CLI11_PARSE(app, argc, argv);
  try {
    return ombrel::selftest::Run(out, compare);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "layer_pictures: %s\n", error.what());
    return 1;
  }
}
