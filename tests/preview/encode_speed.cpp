// What the compression of one frame costs the processor: encode_speed PICTURE.jpg, a frame as a page got it. Prints
// milliseconds of the thread's own time.
#include <windows.h>
#include <turbojpeg.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

#include "jpeg_encoder.h"
#include "options.h"

namespace {

constexpr int kTimes = 300;

std::vector<unsigned char> Read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

companion::Picture Decode(const std::vector<unsigned char>& jpeg) {
  const tjhandle decoder = tjInitDecompress();
  int width = 0, height = 0, sampling = 0;
  tjDecompressHeader2(decoder, const_cast<unsigned char*>(jpeg.data()), static_cast<unsigned long>(jpeg.size()), &width,
                      &height, &sampling);
  companion::Picture picture{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), {}};
  picture.rgba.resize(4 * static_cast<std::size_t>(width * height));
  const int result = tjDecompress2(decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()), picture.rgba.data(),
                                   width, 4 * width, height, TJPF_RGBA, 0);
  tjDestroy(decoder);
  if (result != 0) picture.rgba.clear();
  return picture;
}

// In units of 100 ns, as fine as a tick of the scheduler.
std::uint64_t ThreadTime() {
  FILETIME made, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user);
  const auto value = [](const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
  return value(kernel) + value(user);
}

}  // namespace

int main(int argc, char** argv) {
  const companion::Picture picture = argc == 2 ? Decode(Read(argv[1])) : companion::Picture{};
  if (picture.rgba.empty()) {
    std::fprintf(stderr, "encode_speed: no picture to encode\n");
    return EXIT_FAILURE;
  }
  preview::JpegEncoder encoder(preview::Options{}.quality);
  const std::uint64_t before = ThreadTime();
  for (int i = 0; i < kTimes; ++i) {
    if (encoder.Encode(picture).empty()) return EXIT_FAILURE;
  }
  std::printf("%u %u %.2f\n", picture.width, picture.height, static_cast<double>(ThreadTime() - before) / 1e4 / kTimes);
  return EXIT_SUCCESS;
}
