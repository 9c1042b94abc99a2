#include "checker/listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ombrel/protocol.h>

#include <limits>

#include "made_up_session.h"

namespace checker::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Event PipeEvent(EventKind kind, Pipe pipe, const Bytes& bytes, Nanoseconds when = 1'500'000'000) {
  Event event;
  event.kind = kind;
  event.pipe = pipe;
  event.start = event.end = when;
  event.bytes = bytes;
  return event;
}

class ListingTest : public testing::Test {
 protected:
  ListingTest() {
    for (Listing* listing : {&text, &json})
      static_cast<void>(listing->Take(PipeEvent(EventKind::kEnded, Pipe::kNone, {}, 1'000'000'000)));
  }

  Listing text{Notation::kText};
  Listing json{Notation::kJson};
};

TEST_F(ListingTest, ShowsAPoseInOneLine) {
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, Pose())),
              ElementsAre("   0.500000  to driver     TrackingUpdate  32 bytes  format 4  orientation (0 0 0 1)  "
                          "position (0 1.7 0)"));
}

TEST_F(ListingTest, ShowsAPoseAsJson) {
  const auto lines = json.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, Pose()));
  ASSERT_EQ(lines.size(), 1U);
  const auto line = nlohmann::json::parse(lines[0]);
  EXPECT_EQ(line["seconds"], 0.5);
  EXPECT_EQ(line["message"], "TrackingUpdate");
  EXPECT_EQ(line["length"], 32);
  EXPECT_EQ(line["orientation"], nlohmann::json({0, 0, 0, 1}));
}

TEST_F(ListingTest, ShowsAnAnnouncementWithItsName) {
  OmbrelFrameSharingInfo info{};
  info.name[0] = 'b';
  const Bytes bytes = MessageOf(OMBREL_FRAME_SHARING_INFO, BytesOf(info));
  const auto lines = json.Take(PipeEvent(EventKind::kPipeWritten, Pipe::kIn, bytes));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(nlohmann::json::parse(lines[0])["message"], "FrameSharingInfo");
  EXPECT_EQ(nlohmann::json::parse(lines[0])["name"], "b");
}

TEST_F(ListingTest, WaitsForAllPiecesOfAMessage) {
  const Bytes pulse = Pulse();
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeWritten, Pipe::kIn, Bytes(pulse.begin(), pulse.begin() + 8))),
              IsEmpty());
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeWritten, Pipe::kIn, Bytes(pulse.begin() + 8, pulse.end()))),
              ElementsAre(HasSubstr("to companion  HapticPulse  12 bytes  controllerId 7  timestampMicroseconds 1  "
                                    "durationMicroseconds 2")));
}

TEST_F(ListingTest, ShowsNumbersThatAreNone) {
  const Bytes pose = Pose(1, std::numeric_limits<float>::quiet_NaN());
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, pose)),
              ElementsAre(HasSubstr("position (0 nan 0)")));
  EXPECT_THAT(json.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, pose)), ElementsAre(HasSubstr("[0,null,0]")));
}

TEST_F(ListingTest, ShowsWhatIsTooShortOrUnknownWithoutFields) {
  Bytes bytes = MessageOf(OMBREL_CONTROLLER_UPDATE, Bytes(10));
  const Bytes unknown = MessageOf(99, Bytes(2));
  bytes.insert(bytes.end(), unknown.begin(), unknown.end());
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, bytes)),
              ElementsAre(HasSubstr("ControllerUpdate  10 bytes"), HasSubstr("type 99  2 bytes")));
}

TEST_F(ListingTest, ShowsConnectionsAndTheirEnds) {
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeOpened, Pipe::kOut, {})), ElementsAre(HasSubstr("connected")));
  Event end = PipeEvent(EventKind::kPipeRead, Pipe::kOut, {});
  end.result = 109;
  EXPECT_THAT(text.Take(end), ElementsAre(HasSubstr("error 109")));
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeClosed, Pipe::kOut, {})), ElementsAre(HasSubstr("closed")));
}

TEST_F(ListingTest, StopsAtALengthThatIsTooLong) {
  const Bytes header = BytesOf(OmbrelMessageHeader{OMBREL_MAX_PAYLOAD + 1, OMBREL_TRACKING_UPDATE});
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, header)),
              ElementsAre(HasSubstr("65537 bytes: too long")));
  EXPECT_THAT(text.Take(PipeEvent(EventKind::kPipeRead, Pipe::kOut, Pose())), IsEmpty());
}

}  // namespace
}  // namespace checker::test
