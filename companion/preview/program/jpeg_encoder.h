#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "companion/frame_reader.h"

namespace preview {

// Compresses pictures, again and again. For one thread.
class JpegEncoder {
 public:
  // `quality` from 1 to 100. Throws std::runtime_error when there is no memory.
  explicit JpegEncoder(int quality);

  // Empty when the picture cannot be compressed.
  [[nodiscard]] std::vector<std::uint8_t> Encode(const companion::Picture& picture);

 private:
  struct Destroy {
    void operator()(void* compressor) const;
  };
  std::unique_ptr<void, Destroy> compressor_;
  int quality_;
};

}  // namespace preview
