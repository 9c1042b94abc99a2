#include "base/text_file.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace bench {

std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.filename().string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteText(const std::filesystem::path& file, std::string_view text) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << text;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.filename().string());
}

}  // namespace bench
