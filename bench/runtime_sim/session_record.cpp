#include "session_record.h"

#include <cstdlib>

#include "base/text_file.h"

namespace bench {
namespace {

std::vector<std::int64_t> Column(const CsvTable& table, const std::string& name) {
  const std::size_t column = table.Column(name);
  std::vector<std::int64_t> values;
  for (const auto& row : table.rows) {
    values.push_back(std::strtoll(row[column].c_str(), nullptr, 10));
  }
  return values;
}

// From one column to another, for the rows that have a time in the first.
std::vector<std::int64_t> TicksBetween(const CsvTable& table, const std::string& from, const std::string& to) {
  const std::vector<std::int64_t> starts = Column(table, from);
  const std::vector<std::int64_t> ends = Column(table, to);
  std::vector<std::int64_t> ticks;
  for (std::size_t row = 0; row < starts.size(); ++row) {
    if (starts[row] != 0) {
      ticks.push_back(ends[row] - starts[row]);
    }
  }
  return ticks;
}

}  // namespace

SessionRecord ReadSession(const std::filesystem::path& folder) {
  SessionRecord record;
  record.runtime = nlohmann::json::parse(ReadText(folder / "runtime.json"));
  record.companion = nlohmann::json::parse(ReadText(folder / "companion.json"));
  const CsvTable arrived = ReadCsvFile(folder / "runtime_poses.csv");
  const CsvTable presented = ReadCsvFile(folder / "runtime_frames.csv");
  const CsvTable held = ReadCsvFile(folder / "companion_frames.csv");
  record.sent = ReadTimedPoses(ReadCsvFile(folder / "companion_poses.csv"));
  record.arrived = ReadTimedPoses(arrived);
  record.presented = ReadTimedPoses(presented);
  record.held = ReadTimedPoses(held);
  const std::vector<std::int64_t> frequencies = Column(arrived, "qpc_frequency");
  record.frequency = frequencies.empty() ? 0 : frequencies.front();
  record.dropped = Column(presented, "missed");
  record.presentTicks = TicksBetween(presented, "qpc", "presented_qpc");
  record.poseAgeTicks = TicksBetween(presented, "pose_qpc", "render_qpc");
  record.poseToFrameTicks = TicksBetween(held, "pose_qpc", "qpc");
  const auto sheet = folder / "contact_sheet.png";
  if (std::filesystem::exists(sheet)) {
    record.contactSheet = ReadText(sheet);
  }
  return record;
}

}  // namespace bench
