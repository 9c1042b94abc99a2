#include "jpeg_encoder.h"

#include <turbojpeg.h>

#include <stdexcept>

namespace preview {
namespace {

// Colours at half the resolution, as cameras do it.
constexpr int kSampling = TJSAMP_420;

}  // namespace

JpegEncoder::JpegEncoder(int quality) : compressor_(tjInitCompress()), quality_(quality) {
  if (compressor_ == nullptr) throw std::runtime_error("no JPEG compressor");
}

void JpegEncoder::Destroy::operator()(void* compressor) const { tjDestroy(compressor); }

std::vector<std::uint8_t> JpegEncoder::Encode(const companion::Picture& picture) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  std::vector<std::uint8_t> jpeg(tjBufSize(width, height, kSampling));
  unsigned char* target = jpeg.data();
  auto size = static_cast<unsigned long>(jpeg.size());
  const int result = tjCompress2(compressor_.get(), picture.rgba.data(), width, 4 * width, height, TJPF_RGBA, &target,
                                 &size, kSampling, quality_, TJFLAG_NOREALLOC | TJFLAG_FASTDCT);
  jpeg.resize(result == 0 ? size : 0);
  return jpeg;
}

}  // namespace preview
