// The tables of docs/protocol.md are held against the header, row by row.
#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "ombrel/protocol.h"
#include "support/document_hex.h"

namespace {

using Row = std::vector<std::string>;

// The cells of "| a | b |", without the blanks around them.
Row CellsOf(const std::string& line) {
  static const std::regex cell(R"(\|\s*([^|]*?)\s*(?=\|))");
  Row cells;
  for (std::sregex_iterator it(line.begin(), line.end(), cell), end; it != end; ++it) cells.push_back((*it)[1]);
  return cells;
}

// The rows of the first table behind `title`, without its head.
std::vector<Row> TableAfter(const std::string& title) {
  const std::string page = ReadDocument();
  const std::size_t start = page.find('\n' + title + '\n');
  EXPECT_NE(start, std::string::npos) << "the page has no " << title;
  std::istringstream lines(start == std::string::npos ? "" : page.substr(start + 1 + title.size()));
  std::vector<Row> rows;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('|')) {
      rows.push_back(CellsOf(line));
    } else if (!rows.empty()) {
      break;
    }
  }
  if (rows.size() < 2) return {};
  return {rows.begin() + 2, rows.end()};
}

const char* NameOf(std::uint16_t) { return "`u16`"; }
const char* NameOf(std::uint32_t) { return "`u32`"; }
const char* NameOf(std::uint64_t) { return "`u64`"; }
const char* NameOf(float) { return "`f32`"; }
const char* NameOf(double) { return "`f64`"; }

// A field's type as the page writes it.
template <typename Field>
std::string TypeOf() {
  using Scalar = std::remove_all_extents_t<Field>;
  if constexpr (sizeof(Scalar) == 1) {
    return std::is_array_v<Field> ? std::to_string(sizeof(Field)) + " bytes" : "`u8`";
  } else {
    const std::string name = NameOf(Scalar{});
    return std::is_array_v<Field> ? name + "×" + std::to_string(sizeof(Field) / sizeof(Scalar)) : name;
  }
}

// A field of the header; `words` are how the page's third cell begins.
struct Field {
  std::size_t offset;
  std::string type;
  std::string words;
};

#define FIELD(record, field, words) \
  { offsetof(record, field), TypeOf<decltype(record::field)>(), words }

void ExpectTable(const std::string& title, const std::vector<Field>& fields) {
  const auto rows = TableAfter(title);
  ASSERT_EQ(rows.size(), fields.size()) << title;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_GE(rows[i].size(), 3U) << title;
    EXPECT_EQ(rows[i][0], std::to_string(fields[i].offset)) << title << ", row " << i;
    EXPECT_EQ(rows[i][1], fields[i].type) << title << ", row " << i;
    EXPECT_TRUE(rows[i][2].starts_with(fields[i].words)) << title << ", row " << i << ": " << rows[i][2];
  }
}

std::string Format(int code) { return std::to_string(code); }

TEST(ProtocolTables, HeaderOfAMessage) {
  ExpectTable("## Framing", {FIELD(OmbrelMessageHeader, length, "length"),
                             FIELD(OmbrelMessageHeader, type, "type"),
                             {sizeof(OmbrelMessageHeader), "", "payload"}});
}

TEST(ProtocolTables, QuaternionAndPosition) {
  ExpectTable("**Format 4: quaternion and position**",
              {FIELD(OmbrelTrackingQuaternion, orientation, "orientation x, y, z, w"),
               FIELD(OmbrelTrackingQuaternion, position, "position x, y, z"),
               FIELD(OmbrelTrackingQuaternion, format, Format(OMBREL_POSE_QUATERNION))});
}

TEST(ProtocolTables, Matrices) {
  ExpectTable("**Format 0 and unknown codes: rotation matrix**",
              {FIELD(OmbrelTrackingMatrix, matrix, "three rows of four"),
               FIELD(OmbrelTrackingMatrix, format, Format(OMBREL_POSE_ROTATION_MATRIX))});
  ExpectTable("**Format 6: pose matrix**", {FIELD(OmbrelTrackingMatrix, matrix, "three rows of four"),
                                            FIELD(OmbrelTrackingMatrix, format, Format(OMBREL_POSE_MATRIX))});
}

TEST(ProtocolTables, EulerAngles) {
  ExpectTable("**Format 3: Euler angles and position**",
              {FIELD(OmbrelTrackingEulerAngles, angles, "angles about x (pitch), y (yaw), z (roll)"),
               FIELD(OmbrelTrackingEulerAngles, position, "position x, y, z"),
               FIELD(OmbrelTrackingEulerAngles, unused24, "stored, without effect"),
               FIELD(OmbrelTrackingEulerAngles, unused28, "stored, without effect"),
               FIELD(OmbrelTrackingEulerAngles, format, Format(OMBREL_POSE_EULER_ANGLES))});
}

TEST(ProtocolTables, PositionOnly) {
  ExpectTable("**Format 5: position only**",
              {FIELD(OmbrelTrackingPosition, position, "position x, y, z"),
               FIELD(OmbrelTrackingPosition, format, Format(OMBREL_POSE_POSITION_ONLY))});
}

TEST(ProtocolTables, Sensors) {
  ExpectTable("**Format 2: sensor readings**", {FIELD(OmbrelTrackingSensors, gyroscope, "gyroscope x, y, z"),
                                                FIELD(OmbrelTrackingSensors, accelerometer, "accelerometer x, y, z"),
                                                FIELD(OmbrelTrackingSensors, magnetometer, "magnetometer x, y, z"),
                                                FIELD(OmbrelTrackingSensors, format, Format(OMBREL_POSE_SENSORS))});
}

TEST(ProtocolTables, TrackingState) {
  ExpectTable("**Format 254: tracking state**",
              {FIELD(OmbrelTrackingState, state, "0 tracking, 1 out of range, 2 not connected"),
               FIELD(OmbrelTrackingState, format, Format(OMBREL_POSE_TRACKING_STATE))});
}

TEST(ProtocolTables, FramerateUpdate) {
  ExpectTable("### FramerateUpdate (type 9)", {FIELD(OmbrelFramerateUpdate, framesPerSecond, "frames per second")});
}

TEST(ProtocolTables, ControllerUpdate) {
  ExpectTable(
      "### ControllerUpdate (type 10)",
      {FIELD(OmbrelControllerUpdate, controllerId, "controllerId"),
       FIELD(OmbrelControllerUpdate, trackingState, "trackingState"), FIELD(OmbrelControllerUpdate, unused8, ""),
       FIELD(OmbrelControllerUpdate, pose, "pose"), FIELD(OmbrelControllerUpdate, unused64, ""),
       FIELD(OmbrelControllerUpdate, packetNumber, "packetNumber"), FIELD(OmbrelControllerUpdate, unused84, ""),
       FIELD(OmbrelControllerUpdate, pressedButtons, "pressedButtons"),
       FIELD(OmbrelControllerUpdate, touchedButtons, "touchedButtons"),
       FIELD(OmbrelControllerUpdate, trackpad, "trackpad"), FIELD(OmbrelControllerUpdate, trigger, "trigger"),
       FIELD(OmbrelControllerUpdate, unusedAxes, ""), FIELD(OmbrelControllerUpdate, acceleration, "acceleration"),
       FIELD(OmbrelControllerUpdate, velocity, "velocity")});
}

TEST(ProtocolTables, FrameSharingInfo) {
  ExpectTable(
      "### FrameSharingInfo (type 2)",
      {FIELD(OmbrelFrameSharingInfo, processId, "processId"),
       FIELD(OmbrelFrameSharingInfo, sharedHandle0, "sharedHandle0"),
       FIELD(OmbrelFrameSharingInfo, sharedHandle1, "sharedHandle1"), FIELD(OmbrelFrameSharingInfo, name, "name"),
       FIELD(OmbrelFrameSharingInfo, invertY, "invertY"), FIELD(OmbrelFrameSharingInfo, unused, "")});
}

TEST(ProtocolTables, HapticPulse) {
  ExpectTable("### HapticPulse (type 11)", {FIELD(OmbrelHapticPulse, controllerId, "controllerId"),
                                            FIELD(OmbrelHapticPulse, timestampMicroseconds, "timestampMicroseconds"),
                                            FIELD(OmbrelHapticPulse, durationMicroseconds, "durationMicroseconds"),
                                            {offsetof(OmbrelHapticPulse, unused), "2 bytes", ""}});
}

TEST(ProtocolTables, PoseSlot) {
  ExpectTable("### The pose beside each frame", {FIELD(OmbrelPoseSlot, matrix, "4×4 pose matrix")});
}

#undef FIELD

// The first two columns of a table.
std::vector<std::pair<std::string, std::string>> Pairs(const std::string& title) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const Row& row : TableAfter(title)) pairs.emplace_back(row.at(0), row.at(1));
  return pairs;
}

std::string Number(std::size_t number) { return std::to_string(number); }

TEST(ProtocolTables, PoseFormatsAndTheirSizes) {
  using Pair = std::pair<std::string, std::string>;
  const std::vector<Pair> expected = {
      {Format(OMBREL_POSE_ROTATION_MATRIX), Number(sizeof(OmbrelTrackingMatrix))},
      {Format(OMBREL_POSE_REPEAT), Number(sizeof(OmbrelTrackingFormatOnly))},
      {Format(OMBREL_POSE_SENSORS), Number(sizeof(OmbrelTrackingSensors))},
      {Format(OMBREL_POSE_EULER_ANGLES), Number(sizeof(OmbrelTrackingEulerAngles))},
      {Format(OMBREL_POSE_QUATERNION), Number(sizeof(OmbrelTrackingQuaternion))},
      {Format(OMBREL_POSE_POSITION_ONLY), Number(sizeof(OmbrelTrackingPosition))},
      {Format(OMBREL_POSE_MATRIX), Number(sizeof(OmbrelTrackingMatrix))},
      {Format(OMBREL_POSE_RECENTER), Number(sizeof(OmbrelTrackingFormatOnly))},
      {Format(OMBREL_POSE_TRACKING_STATE), Number(sizeof(OmbrelTrackingState))},
      {Format(OMBREL_POSE_REPEAT_TOO), Number(sizeof(OmbrelTrackingFormatOnly))},
      {"any other", Number(sizeof(OmbrelTrackingMatrix))},
  };
  EXPECT_EQ(Pairs("### TrackingUpdate (type 4)"), expected);
}

TEST(ProtocolTables, Buttons) {
  const std::vector<std::pair<std::string, std::string>> expected = {
      {Format(OMBREL_BUTTON_SYSTEM), "system"},   {Format(OMBREL_BUTTON_APPLICATION_MENU), "application menu"},
      {Format(OMBREL_BUTTON_GRIP), "grip"},       {Format(OMBREL_BUTTON_TRACKPAD), "trackpad"},
      {Format(OMBREL_BUTTON_TRIGGER), "trigger"},
  };
  EXPECT_EQ(Pairs("| 168 | `f64`×3 | velocity | x, y, z, metres per second |"), expected);
}

TEST(ProtocolTables, MessageTypesAndLengths) {
  const std::vector<Row> rows = TableAfter("| 8 | | payload | `length` bytes |");
  const std::vector<std::pair<int, std::size_t>> expected = {
      {OMBREL_FRAME_SHARING_INFO, sizeof(OmbrelFrameSharingInfo)},
      {OMBREL_TRACKING_UPDATE, sizeof(OmbrelTrackingFormatOnly)},
      {OMBREL_RECENTER_REQUEST, 0},
      {OMBREL_FRAMERATE_UPDATE, sizeof(OmbrelFramerateUpdate)},
      {OMBREL_CONTROLLER_UPDATE, sizeof(OmbrelControllerUpdate)},
      {OMBREL_HAPTIC_PULSE, sizeof(OmbrelHapticPulse)},
      {OMBREL_SHUTDOWN_REQUEST, 0},
  };
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].at(0), std::to_string(expected[i].first));
    const std::string length = expected[i].second == 0 ? "any" : Number(expected[i].second);
    EXPECT_NE(rows[i].at(3).find(length), std::string::npos) << rows[i].at(1) << ": " << rows[i].at(3);
  }
}

TEST(ProtocolTables, NamesAndNumbersOfTheText) {
  const std::string page = ReadDocument();
  for (const std::string_view text :
       {"`" OMBREL_PIPE_FROM_DRIVER "` | writing only", "`" OMBREL_PIPE_TO_DRIVER "` | reading only",
        "must be named `" OMBREL_PROCESS_NAME "`", "exactly `" OMBREL_MONITOR_PROCESS_NAME "`",
        "format `DXGI_FORMAT_R8G8B8A8_UNORM`"}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
  const auto says = [&](const std::string& text) { EXPECT_NE(page.find(text), std::string::npos) << text; };
  says("**key " + Format(OMBREL_KEYED_MUTEX_KEY) + "**");
  says("A memory block of " + Number(sizeof(OmbrelPoseBlock)) + " bytes");
  says("Slot i, at\noffset " + Number(sizeof(OmbrelPoseSlot)) + "·i");
  says("**1/" + Format(OMBREL_SENSOR_RATE) + " of a second**");
  says(Format(OMBREL_SHARING_NAME_LENGTH) + " characters out of");
  says("it is 1000 / " + Format(OMBREL_DEFAULT_FRAME_RATE));
}

}  // namespace
