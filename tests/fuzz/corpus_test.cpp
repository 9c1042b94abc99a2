// Replays the corpus: every file is a stream that the driver must take as the protocol's page says.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "check_stream.h"
#include "seeds.h"
#include "stream_mutator.h"
#include "support/document_hex.h"

namespace ombrel::test {
namespace {

std::filesystem::path Folder() {
  static const std::string option = "--corpus=";
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (argument.starts_with(option)) return argument.substr(option.size());
  }
  return {};
}

Seeds Corpus() {
  Seeds corpus;
  for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
    std::ifstream file(entry.path(), std::ios::binary);
    EXPECT_TRUE(file.good()) << entry.path();
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    const auto bytes = std::as_bytes(std::span(content));
    corpus[entry.path().filename().string()].assign(bytes.begin(), bytes.end());
  }
  return corpus;
}

TEST(FuzzCorpusTest, EveryStreamIsTakenAsThePageSays) {
  const Seeds corpus = Corpus();
  ASSERT_GT(corpus.size(), 40U);
  for (const auto& [name, bytes] : corpus) EXPECT_EQ(CheckStream(bytes), "") << name;
}

TEST(FuzzCorpusTest, AStreamOfNothingIsTakenToo) { EXPECT_EQ(CheckStream({}), ""); }

// Others may have joined them: what a fuzzer found.
TEST(FuzzCorpusTest, HoldsTheStreamsThatItBeginsWith) {
  const Seeds corpus = Corpus();
  for (const auto& [name, bytes] : MakeSeeds(ReadHexBlocks(ReadDocument()))) {
    ASSERT_TRUE(corpus.contains(name)) << "write_fuzz_corpus makes " << name;
    EXPECT_EQ(corpus.at(name), bytes) << "write_fuzz_corpus writes another " << name;
  }
}

// Changes single bytes, as a fuzzer would between its own more thoughtful changes.
void FlipAByte(StreamMutator::Stream& bytes, std::size_t most) {
  bytes.resize(std::min(bytes.size(), most));
  if (!bytes.empty()) bytes[bytes.size() / 2] ^= std::byte{0x41};
}

TEST(FuzzCorpusTest, StreamsMadeFromItAreTakenToo) {
  const Seeds corpus = Corpus();
  StreamMutator mutator(1, FlipAByte);
  StreamMutator::Stream last;
  for (int round = 0; round < 100; ++round) {
    for (const auto& [name, bytes] : corpus) {
      if (bytes.size() > 4096) continue;
      last = round % 2 == 0 ? mutator.Mutate(bytes, 4096) : mutator.Cross(bytes, last, 4096);
      ASSERT_EQ(CheckStream(last), "") << "round " << round << ", from " << name;
    }
  }
}

}  // namespace
}  // namespace ombrel::test
