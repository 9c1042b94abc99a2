#include "preview/messages.h"

#include <gtest/gtest.h>

#include "preview/request_rules.h"

namespace preview {
namespace {

template <typename Message>
Message Parse(std::string_view text) {
  const auto message = ParsePageMessage(text);
  const auto* wanted = message ? std::get_if<Message>(&*message) : nullptr;
  EXPECT_NE(wanted, nullptr) << text;
  return wanted == nullptr ? Message{} : *wanted;
}

TEST(PageMessages, AHeadIsAQuaternionOfUnitLength) {
  const auto head = Parse<HeadMessage>(R"({"type":"head","number":7,"orientation":[0,0.7071,0,0.7071]})");
  EXPECT_EQ(head.number, 7U);
  EXPECT_FLOAT_EQ(head.orientation[1], 0.70710678F);
  EXPECT_FLOAT_EQ(head.orientation[3], 0.70710678F);
}

TEST(PageMessages, AControllerNamesItsButtons) {
  const auto hand = Parse<ControllerMessage>(
      R"({"type":"controller","id":2,"pressed":["grip","trigger"],"touched":["trackpad"],"trackpad":[-1,0.5],"trigger":1})");
  EXPECT_EQ(hand.id, 2U);
  EXPECT_EQ(hand.pressed, (std::uint64_t{1} << 2) | (std::uint64_t{1} << 33));
  EXPECT_EQ(hand.touched, std::uint64_t{1} << 32);
  EXPECT_EQ(hand.trackpad, (std::array<float, 2>{-1, 0.5F}));
  EXPECT_EQ(hand.trigger, 1);
}

TEST(PageMessages, RatesAndAcknowledgementsAreCounts) {
  EXPECT_EQ(Parse<RateMessage>(R"({"type":"rate","framesPerSecond":90})").framesPerSecond, 90U);
  EXPECT_EQ(Parse<ReceivedMessage>(R"({"type":"received","frame":4294967295})").frame, 4294967295U);
  Parse<RecenterMessage>(R"({"type":"recenter"})");
}

class Refused : public testing::TestWithParam<const char*> {};

TEST_P(Refused, WhatIsNoMessageOrOutOfRange) { EXPECT_FALSE(ParsePageMessage(GetParam()).has_value()); }

INSTANTIATE_TEST_SUITE_P(
    PageMessages, Refused,
    testing::Values("", "{", "[]", "null", R"({"type":7})", R"({"type":"reboot"})", R"({"type":"head","number":1})",
                    R"({"type":"head","number":-1,"orientation":[0,0,0,1]})",
                    R"({"type":"head","number":1,"orientation":[0,0,0,2]})",
                    R"({"type":"head","number":1,"orientation":[0,0,0,0]})",
                    R"({"type":"head","number":1,"orientation":[0,0,1]})",
                    R"({"type":"head","number":1,"orientation":[0,0,0,"1"]})",
                    R"({"type":"head","number":1,"orientation":[0,0,0,1e999]})",
                    R"({"type":"rate","framesPerSecond":0})", R"({"type":"rate","framesPerSecond":241})",
                    R"({"type":"received","frame":4294967296})", R"({"type":"received","frame":1.5})",
                    R"({"type":"controller","id":3,"pressed":[],"touched":[],"trackpad":[0,0],"trigger":0})",
                    R"({"type":"controller","id":1,"pressed":["spoon"],"touched":[],"trackpad":[0,0],"trigger":0})",
                    R"({"type":"controller","id":1,"pressed":[],"touched":[1],"trackpad":[0,0],"trigger":0})",
                    R"({"type":"controller","id":1,"pressed":[],"touched":[],"trackpad":[0,2],"trigger":0})",
                    R"({"type":"controller","id":1,"pressed":[],"touched":[],"trackpad":[0,0],"trigger":1.5})",
                    R"({"type":"controller","id":1,"pressed":[],"touched":[],"trackpad":[0,0]})"));

TEST(FrameBytes, BeginWithSixteenOfHeader) {
  const auto bytes = EncodeFrame({0x01020304, 5, 1.0F, 0.5F, {0xFF, 0xD8}});
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{4, 3, 2, 1, 5, 0, 0, 0, 0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F, 0xFF, 0xD8}));
}

TEST(RequestRules, ThisMachineHasThreeNames) {
  for (const char* host : {"localhost", "localhost:7420", "127.0.0.1:1", "[::1]:65535"})
    EXPECT_TRUE(IsLocalHost(host)) << host;
  for (const char* host :
       {"", "example.org", "localhost.example.org", "localhost:", "localhost:80x", "localhost:123456",
        "127.0.0.1.example.org", "127.0.0.2", "LOCALHOST", "[::1", "localhost@example.org"}) {
    EXPECT_FALSE(IsLocalHost(host)) << host;
  }
}

TEST(RequestRules, AnOriginIsTheSameWithItsPort) {
  EXPECT_TRUE(IsSameOrigin("http://localhost:7420", "localhost:7420"));
  for (const char* origin : {"", "null", "https://localhost:7420", "http://localhost:7421", "http://localhost",
                             "http://127.0.0.1:7420", "http://localhost:7420.example.org"}) {
    EXPECT_FALSE(IsSameOrigin(origin, "localhost:7420")) << origin;
  }
}

}  // namespace
}  // namespace preview
