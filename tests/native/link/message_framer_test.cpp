#include "link/message_framer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "support/bytes.h"

namespace ombrel::test {
namespace {

struct Taken {
  std::uint32_t type;
  std::vector<std::byte> payload;
  bool operator==(const Taken&) const = default;
};

class MessageFramerTest : public testing::Test {
 protected:
  using Result = MessageFramer::Result;

  // Takes every whole message out; what stopped it.
  Result Drain() {
    MessageFramer::Message message;
    Result result = framer_.Next(message);
    for (; result == Result::kMessage; result = framer_.Next(message)) {
      taken_.push_back({message.type, {message.payload.begin(), message.payload.end()}});
    }
    return result;
  }
  // Feeds the bytes in pieces of at most that size, and takes messages behind each.
  Result Feed(std::span<const std::byte> bytes, std::size_t piece) {
    Result result = Result::kNeedMore;
    while (!bytes.empty() && result == Result::kNeedMore) {
      const std::span<std::byte> space = framer_.FreeSpace();
      const std::size_t count = std::min({piece, space.size(), bytes.size()});
      if (count == 0) return result;
      std::memcpy(space.data(), bytes.data(), count);
      framer_.Filled(count);
      bytes = bytes.subspan(count);
      result = Drain();
    }
    return result;
  }

  MessageFramer framer_;
  std::vector<Taken> taken_;
};

Bytes ThreeMessages() {
  Bytes stream;
  stream.Append(Framed(9, Bytes().U32(72)));
  stream.Append(Framed(8, {}));
  stream.Append(Framed(4, Bytes().Fill(28, 3).U32(4)));
  return stream;
}

const std::vector<Taken> kThreeTaken{{9, Bytes().U32(72).Get()}, {8, {}}, {4, Bytes().Fill(28, 3).U32(4).Get()}};

TEST_F(MessageFramerTest, HasNothingToGiveAtFirst) { EXPECT_EQ(Drain(), Result::kNeedMore); }

TEST_F(MessageFramerTest, TakesSeveralMessagesThatComeAtOnce) {
  EXPECT_EQ(Feed(ThreeMessages(), 1000), Result::kNeedMore);
  EXPECT_EQ(taken_, kThreeTaken);
}

TEST_F(MessageFramerTest, TakesMessagesThatComeByteByByte) {
  Feed(ThreeMessages(), 1);
  EXPECT_EQ(taken_, kThreeTaken);
}

TEST_F(MessageFramerTest, TakesTheSameMessagesWhereverTheStreamIsSplit) {
  const Bytes stream = ThreeMessages();
  for (std::size_t split = 0; split <= stream.Size(); ++split) {
    framer_.Reset();
    taken_.clear();
    const std::span<const std::byte> bytes = stream;
    Feed(bytes.first(split), split);
    Feed(bytes.subspan(split), stream.Size());
    ASSERT_EQ(taken_, kThreeTaken) << "split at " << split;
  }
}

TEST_F(MessageFramerTest, TakesAMessageOfNoBytes) {
  Feed(Framed(14, {}), 3);
  EXPECT_EQ(taken_, (std::vector<Taken>{{14, {}}}));
}

TEST_F(MessageFramerTest, GivesTypesThatNobodyKnows) {
  Feed(Framed(3, Bytes().Fill(5)), 100);
  Feed(Framed(0xFFFFFFFF, {}), 100);
  ASSERT_EQ(taken_.size(), 2U);
  EXPECT_EQ(taken_[0].type, 3U);
  EXPECT_EQ(taken_[1].type, 0xFFFFFFFFU);
}

TEST_F(MessageFramerTest, TakesAPayloadOfExactly64KiBAndWhatFollows) {
  const Bytes largest = Bytes().Fill(65536, 0x5A);
  Bytes stream = Framed(3, largest);
  stream.Append(ThreeMessages());
  for (const std::size_t piece : {1000U, 4096U, 65544U, 200000U}) {
    taken_.clear();
    ASSERT_EQ(Feed(stream, piece), Result::kNeedMore);
    ASSERT_EQ(taken_.size(), 4U);
    EXPECT_EQ(taken_[0].payload, largest.Get());
    EXPECT_EQ(taken_[3], kThreeTaken[2]);
  }
}

TEST_F(MessageFramerTest, RefusesAPayloadOfOneByteMore) {
  EXPECT_EQ(Feed(Bytes().U32(65537).U32(4), 8), Result::kTooLong);
  EXPECT_TRUE(taken_.empty());
}

TEST_F(MessageFramerTest, RefusesAsSoonAsTheLengthIsThere) {
  EXPECT_EQ(Feed(Bytes().U32(0xFFFFFFFF), 4), Result::kTooLong);
}

TEST_F(MessageFramerTest, GivesWhatCameBeforeAMessageThatIsTooLong) {
  Bytes stream = ThreeMessages();
  stream.U32(65537).U32(4);
  EXPECT_EQ(Feed(stream, 1000), Result::kTooLong);
  EXPECT_EQ(taken_, kThreeTaken);
}

TEST_F(MessageFramerTest, ForgetsWhatAnEarlierConnectionLeftBehind) {
  Feed(Bytes().U32(100).U32(4).Fill(20), 50);
  framer_.Reset();
  Feed(ThreeMessages(), 7);
  EXPECT_EQ(taken_, kThreeTaken);
}

TEST_F(MessageFramerTest, CanBeUsedAgainAfterAMessageThatWasTooLong) {
  Feed(Bytes().U32(0x7FFFFFFF), 4);
  framer_.Reset();
  Feed(ThreeMessages(), 1000);
  EXPECT_EQ(taken_, kThreeTaken);
}

TEST_F(MessageFramerTest, StaysInStepOverManyMessagesOfRandomSizesInRandomPieces) {
  std::mt19937 random(1);
  std::vector<Taken> expected;
  Bytes stream;
  for (std::uint32_t i = 0; i < 300; ++i) {
    const Bytes payload = Bytes().Fill(random() % (i % 50 == 0 ? 65537 : 300), static_cast<std::uint8_t>(i));
    expected.push_back({i, payload.Get()});
    stream.Append(Framed(i, payload));
  }
  std::span<const std::byte> rest = stream;
  while (!rest.empty()) {
    const std::size_t piece = std::min<std::size_t>(1 + random() % 20000, rest.size());
    ASSERT_EQ(Feed(rest.first(piece), piece), Result::kNeedMore);
    rest = rest.subspan(piece);
  }
  EXPECT_EQ(taken_, expected);
}

}  // namespace
}  // namespace ombrel::test
