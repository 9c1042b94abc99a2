#include "companion/message_assembler.h"

#include <gtest/gtest.h>

namespace companion {
namespace {

Bytes TwoMessages() {
  Bytes stream = EncodeMessage(3, Bytes{1, 2, 3});
  const Bytes second = EncodeMessage(9, Bytes{90, 0, 0, 0});
  stream.insert(stream.end(), second.begin(), second.end());
  return stream;
}

TEST(MessageAssembler, CutsOnePieceIntoMessages) {
  MessageAssembler assembler;
  assembler.Feed(TwoMessages());
  const auto first = assembler.Next(), second = assembler.Next();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->type, 3U);
  EXPECT_EQ(first->payload, (Bytes{1, 2, 3}));
  EXPECT_TRUE(second->Is(MessageType::FramerateUpdate));
  EXPECT_FALSE(assembler.Next());
  EXPECT_EQ(assembler.Pending(), 0U);
}

TEST(MessageAssembler, PutsSingleBytesTogether) {
  MessageAssembler assembler;
  std::vector<Message> messages;
  for (const std::uint8_t byte : TwoMessages()) {
    assembler.Feed({&byte, 1});
    while (auto message = assembler.Next()) messages.push_back(*message);
  }
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[1].payload, (Bytes{90, 0, 0, 0}));
}

TEST(MessageAssembler, KnowsMessagesWithoutAPayload) {
  MessageAssembler assembler;
  assembler.Feed(EncodeRecenterRequest());
  const auto message = assembler.Next();
  ASSERT_TRUE(message);
  EXPECT_TRUE(message->payload.empty());
}

TEST(MessageAssembler, TakesTheLargestPayload) {
  MessageAssembler assembler;
  assembler.Feed(EncodeMessage(4, Bytes(kLargestPayload)));
  EXPECT_TRUE(assembler.Next());
}

TEST(MessageAssembler, BreaksOnAPayloadThatIsTooLarge) {
  MessageAssembler assembler;
  assembler.Feed(Bytes{1, 0, 1, 0, 4, 0, 0, 0});  // 65537
  EXPECT_FALSE(assembler.Next());
  EXPECT_TRUE(assembler.Broken());
  assembler.Feed(EncodeRecenterRequest());
  EXPECT_FALSE(assembler.Next());
}

}  // namespace
}  // namespace companion
