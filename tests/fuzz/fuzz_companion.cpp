// The fuzzer's way in: the bytes are a companion's, as they stand on its pipe.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "check_stream.h"
#include "stream_mutator.h"

using ombrel::test::StreamMutator;

// The fuzzer's own mutation.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

std::span<const std::byte> AsBytes(const std::uint8_t* data, std::size_t size) {
  return std::as_bytes(std::span(data, size));
}

void Raw(StreamMutator::Stream& bytes, std::size_t most) {
  const std::size_t size = std::min(bytes.size(), most);
  bytes.resize(most + 1);
  bytes.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(bytes.data()), size, std::max<std::size_t>(most, 1)));
}

std::size_t PutBack(const StreamMutator::Stream& bytes, std::uint8_t* data) {
  std::ranges::transform(bytes, data, [](std::byte byte) { return std::to_integer<std::uint8_t>(byte); });
  return bytes.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string wrong = ombrel::test::CheckStream(AsBytes(data, size));
  if (!wrong.empty()) {
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
  }
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
  return PutBack(StreamMutator(seed, Raw).Mutate(AsBytes(data, size), most), data);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* a, std::size_t sizeOfA, const std::uint8_t* b,
                                                 std::size_t sizeOfB, std::uint8_t* out, std::size_t most,
                                                 unsigned seed) {
  return PutBack(StreamMutator(seed, Raw).Cross(AsBytes(a, sizeOfA), AsBytes(b, sizeOfB), most), out);
}
