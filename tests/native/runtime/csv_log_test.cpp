#include <stdexcept>

#include "csv_log.h"

#include <gtest/gtest.h>

#include "latency.h"

namespace bench {
namespace {

std::filesystem::path File(const char* name) { return std::filesystem::temp_directory_path() / name; }

TEST(FrameCsv, EveryFloatComesBackAsItWas) {
  FrameReport report;
  report.presentTicks = 123456789012;
  report.missedIntervals = 4;
  for (int index = 0; index < 12; ++index) {
    report.pose.m[index / 4][index % 4] = 1.0F / (3.0F + static_cast<float>(index));
  }
  FrameCsv(File("frame_csv_test.csv")).Add(report);
  const CsvTable table = ReadCsvFile(File("frame_csv_test.csv"));
  const auto poses = ReadTimedPoses(table);
  ASSERT_EQ(poses.size(), 1U);
  EXPECT_EQ(poses[0].ticks, 123456789012);
  EXPECT_EQ(table.rows[0][table.Column("missed")], "4");
  for (std::size_t index = 0; index < 12; ++index) EXPECT_EQ(poses[0].pose[index], report.pose.m[index / 4][index % 4]);
}

TEST(PoseCsv, WritesTheRotationAndWhereTheHeadStands) {
  PoseRecord record;
  record.ticks = 77;
  record.pose.qWorldFromDriverRotation.w = record.pose.qDriverFromHeadRotation.w = record.pose.qRotation.w = 1.0;
  record.pose.vecPosition[1] = 1.5;
  record.pose.poseIsValid = true;
  PoseCsv(File("pose_csv_test.csv")).Add(record);
  const CsvTable table = ReadCsvFile(File("pose_csv_test.csv"));
  ASSERT_EQ(table.rows.size(), 1U);
  EXPECT_EQ(table.rows[0][table.Column("qw")], "1");
  EXPECT_EQ(table.rows[0][table.Column("valid")], "1");
  EXPECT_EQ(ReadTimedPoses(table)[0].pose[7], 1.5F);
}

TEST(FrameCsv, NoFileNameMeansNoFile) {
  FrameCsv csv{std::filesystem::path()};
  EXPECT_NO_THROW(csv.Add({}));
  EXPECT_THROW(FrameCsv("no/such/folder/frames.csv"), std::runtime_error);
}

}  // namespace
}  // namespace bench
