#include "checker/growing_file.h"

#include <iterator>

namespace checker {

// Some run-time libraries stay at an end that they have seen once, until they are told to go there.
std::vector<std::uint8_t> GrowingFile::More() {
  if (!IsThere()) stream_.open(path_, std::ios::binary);
  stream_.clear();
  stream_.seekg(read_);
  std::vector<std::uint8_t> more{std::istreambuf_iterator<char>(stream_), {}};
  read_ += static_cast<std::streamoff>(more.size());
  return more;
}

}  // namespace checker
