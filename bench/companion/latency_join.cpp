#include "companion/latency_join.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace bench {
namespace {

constexpr std::int64_t kWindowSeconds = 10;

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream text(line);
  std::string cell;
  while (std::getline(text, cell, ',')) {
    if (!cell.empty() && cell.back() == '\r') cell.pop_back();
    cells.push_back(cell);
  }
  return cells;
}

// Where the columns stand that a log must have: qpc, qpc_frequency, then the matrix.
std::vector<std::size_t> FindColumns(const std::vector<std::string>& names) {
  std::vector<std::string> wanted = {"qpc", "qpc_frequency"};
  for (const char row : {'0', '1', '2'}) {
    for (const char column : {'0', '1', '2', '3'}) wanted.push_back(std::string("m") + row + column);
  }
  std::vector<std::size_t> columns;
  for (const std::string& name : wanted) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) throw std::runtime_error("no column " + name);
    columns.push_back(static_cast<std::size_t>(found - names.begin()));
  }
  return columns;
}

float Difference(const PoseMatrix& left, const PoseMatrix& right) {
  float largest = 0;
  for (std::size_t i = 0; i < left.size(); ++i) largest = std::max(largest, std::fabs(left[i] - right[i]));
  return largest;
}

// The time of the closest pose among those that are not later than `sink` nor too old, newest first.
std::optional<std::int64_t> FindSource(std::span<const TimedPose> notLater, const TimedPose& sink, std::int64_t window,
                                       float tolerance) {
  std::optional<std::int64_t> ticks;
  float smallest = tolerance;
  for (auto source = notLater.rbegin(); source != notLater.rend() && sink.ticks - source->ticks <= window; ++source) {
    const float difference = Difference(source->pose, sink.pose);
    if (ticks ? difference < smallest : difference <= smallest) {
      ticks = source->ticks;
      smallest = difference;
    }
    if (ticks && smallest == 0) break;
  }
  return ticks;
}

}  // namespace

TimedPoses ReadTimedPoses(std::istream& csv) {
  std::string line;
  std::getline(csv, line);
  const auto columns = FindColumns(Cells(line));
  const std::size_t needed = *std::max_element(columns.begin(), columns.end()) + 1;
  TimedPoses log;
  while (std::getline(csv, line)) {
    const auto cells = Cells(line);
    if (cells.size() < needed || cells[columns[0]].empty()) continue;
    TimedPose timed;
    timed.ticks = std::strtoll(cells[columns[0]].c_str(), nullptr, 10);
    log.ticksPerSecond = std::strtoll(cells[columns[1]].c_str(), nullptr, 10);
    for (std::size_t i = 0; i < timed.pose.size(); ++i) {
      timed.pose[i] = std::strtof(cells[columns[2 + i]].c_str(), nullptr);
    }
    log.poses.push_back(timed);
  }
  return log;
}

TimedPoses WithoutRepeats(const TimedPoses& log) {
  TimedPoses shorter = log;
  const auto end = std::unique(shorter.poses.begin(), shorter.poses.end(),
                               [](const TimedPose& left, const TimedPose& right) { return left.pose == right.pose; });
  shorter.poses.erase(end, shorter.poses.end());
  return shorter;
}

std::vector<double> DelaysMs(const TimedPoses& earlier, const TimedPoses& later, float tolerance) {
  std::vector<double> delays;
  const std::span<const TimedPose> sources(earlier.poses);
  for (const TimedPose& sink : later.poses) {
    const auto end = std::upper_bound(sources.begin(), sources.end(), sink.ticks,
                                      [](std::int64_t ticks, const TimedPose& source) { return ticks < source.ticks; });
    const auto notLater = sources.first(static_cast<std::size_t>(end - sources.begin()));
    const auto source = FindSource(notLater, sink, kWindowSeconds * earlier.ticksPerSecond, tolerance);
    if (source) {
      delays.push_back(static_cast<double>(sink.ticks - *source) * 1000 / static_cast<double>(earlier.ticksPerSecond));
    }
  }
  return delays;
}

}  // namespace bench
