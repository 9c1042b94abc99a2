#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <span>

namespace ombrel {

// Three rows of four floats; the rotation is in columns 0 to 2.
using Matrix3x4 = std::array<std::array<float, 4>, 3>;

// The same where its bytes lie, read element by element. A copy would have to be waited for: what the compiler loads
// from it in pairs lies across the parts that it was stored in.
class MatrixBytes {
 public:
  static constexpr std::size_t kSize = sizeof(Matrix3x4);

  explicit MatrixBytes(std::span<const std::byte> bytes) : bytes_(bytes.data()) {}
  struct Row {
    const std::byte* bytes;
    float operator[](std::size_t column) const {
      float element;
      std::memcpy(&element, bytes + column * sizeof(float), sizeof(float));
      return element;
    }
  };
  Row operator[](std::size_t row) const { return {bytes_ + row * 4 * sizeof(float)}; }
  [[nodiscard]] Matrix3x4 Copy() const {
    Matrix3x4 matrix;
    std::memcpy(&matrix, bytes_, sizeof(matrix));
    return matrix;
  }

 private:
  const std::byte* bytes_;
};

}  // namespace ombrel
