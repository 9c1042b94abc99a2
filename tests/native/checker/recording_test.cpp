#include "checker/recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "checker/growing_file.h"
#include "test_files/scratch_folder.h"

namespace checker {
namespace {

Event SomeEvent() {
  Event event;
  event.kind = EventKind::kPipeRead;
  event.side = Side::kCompanion;
  event.pipe = Pipe::kOut;
  event.result = 0x80004005;
  event.start = 0x0102030405060708;
  event.end = event.start + 1;
  event.subject = 0x40000002;
  event.timeoutMs = 16;
  event.key = 0xFFFFFFFFFFFFFFFF;
  event.bytes = {1, 2, 3};
  return event;
}

Bytes SomeRecording() {
  Bytes bytes = EncodeHeader(Side::kCompanion, 0x1234);
  const Bytes event = EncodeEvent(SomeEvent());
  bytes.insert(bytes.end(), event.begin(), event.end());
  return bytes;
}

TEST(RecordingTest, HasTheLayoutThatItsPageGives) {
  EXPECT_EQ(EncodeHeader(Side::kCompanion, 0x1234),
            (Bytes{'O', 'M', 'B', 'R', 'R', 'E', 'C', '1', 1, 0, 0, 0, 0x34, 0x12, 0, 0}));
  EXPECT_EQ(EncodeEvent(SomeEvent()), (Bytes{3,    0,    2,    0,    0x05, 0x40, 0x00, 0x80, 8, 7, 6, 5,    4,  3, 2, 1,
                                             9,    7,    6,    5,    4,    3,    2,    1,    2, 0, 0, 0x40, 16, 0, 0, 0,
                                             0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 3, 0, 0, 0,    1,  2, 3}));
}

TEST(RecordingTest, ComesBackFromSingleBytes) {
  RecordingReader reader;
  std::optional<Event> event;
  for (const std::uint8_t byte : SomeRecording()) {
    ASSERT_FALSE(event);
    reader.Feed(std::span(&byte, 1));
    event = reader.Next();
  }
  ASSERT_TRUE(event);
  EXPECT_EQ(EncodeEvent(*event), EncodeEvent(SomeEvent()));
  EXPECT_EQ(event->side, Side::kCompanion);
}

TEST(RecordingTest, RefusesWhatIsNone) {
  Bytes bytes = SomeRecording();
  bytes[0] = 'X';
  RecordingReader reader;
  reader.Feed(bytes);
  EXPECT_TRUE(reader.Broken());
  EXPECT_FALSE(reader.Next());
  EXPECT_THROW(static_cast<void>(ReadRecording("no such file")), std::runtime_error);
}

TEST(RecordingTest, NoticesDamage) {
  Bytes bytes = SomeRecording();
  bytes[16] = 99;
  RecordingReader reader;
  reader.Feed(bytes);
  EXPECT_FALSE(reader.Next());
  EXPECT_TRUE(reader.Broken());
}

TEST(RecordingTest, CountsAReleaseFromItsBeginning) {
  Event acquired, released;
  acquired.kind = EventKind::kAcquired;
  released.kind = EventKind::kReleased;
  acquired.start = 1, acquired.end = 5;
  released.start = 4, released.end = 6;
  const auto events = InOrder({acquired, released});
  EXPECT_EQ(events[0].kind, EventKind::kReleased);
}

TEST(GrowingFileTest, GivesWhatHasComeSinceTheLastTime) {
  const ombrel::test::ScratchFolder folder;
  GrowingFile file(folder.At("growing"));
  EXPECT_TRUE(file.More().empty());
  EXPECT_FALSE(file.IsThere());
  std::ofstream writer(folder.At("growing"), std::ios::binary);
  for (const char* const text : {"first", "", "and second"}) {
    writer << text << std::flush;
    const auto more = file.More();
    EXPECT_EQ(std::string(more.begin(), more.end()), text);
  }
}

}  // namespace
}  // namespace checker
