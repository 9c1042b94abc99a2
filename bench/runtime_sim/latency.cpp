#include "latency.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

namespace bench {
namespace {

constexpr float kRotationTolerance = 1e-3F;
constexpr float kPositionTolerance = 1e-6F;

bool SamePose(const TimedPose& a, const TimedPose& b) {
  for (std::size_t index = 0; index < a.pose.size(); ++index) {
    const float tolerance = index % 4 == 3 ? kPositionTolerance : kRotationTolerance;
    if (!(std::abs(a.pose[index] - b.pose[index]) <= tolerance)) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::vector<TimedPose> ReadTimedPoses(const CsvTable& table) {
  const std::size_t ticks = table.Column("qpc");
  std::array<std::size_t, 12> columns{};
  for (std::size_t index = 0; index < columns.size(); ++index) {
    columns[index] = table.Column("m" + std::to_string(index / 4) + std::to_string(index % 4));
  }
  std::vector<TimedPose> poses;
  for (const auto& row : table.rows) {
    TimedPose pose;
    pose.ticks = std::strtoll(row[ticks].c_str(), nullptr, 10);
    for (std::size_t index = 0; index < columns.size(); ++index) {
      pose.pose[index] = std::strtof(row[columns[index]].c_str(), nullptr);
    }
    poses.push_back(pose);
  }
  return poses;
}

std::vector<std::int64_t> PoseLatencies(std::span<const TimedPose> sent, std::span<const TimedPose> arrived) {
  std::vector<std::int64_t> latencies;
  std::size_t first = 0;  // no arrival before this one is free
  for (const TimedPose& pose : sent) {
    while (first < arrived.size() && arrived[first].ticks < pose.ticks) {
      ++first;
    }
    for (std::size_t index = first; index < arrived.size(); ++index) {
      if (SamePose(pose, arrived[index])) {
        latencies.push_back(arrived[index].ticks - pose.ticks);
        first = index + 1;
        break;
      }
    }
  }
  return latencies;
}

std::vector<std::int64_t> FrameLatencies(std::span<const TimedPose> presented, std::span<const TimedPose> held) {
  std::map<std::array<float, 12>, std::vector<std::int64_t>> times;
  for (const TimedPose& frame : presented) {
    times[frame.pose].push_back(frame.ticks);
  }
  std::vector<std::int64_t> latencies;
  for (const TimedPose& frame : held) {
    const auto found = times.find(frame.pose);
    if (found != times.end() && found->second.size() == 1 && found->second.front() <= frame.ticks) {
      latencies.push_back(frame.ticks - found->second.front());
    }
  }
  return latencies;
}

std::vector<std::int64_t> FrameLatenciesByTime(std::span<const TimedPose> presented, std::span<const TimedPose> held) {
  std::vector<std::int64_t> latencies;
  for (const TimedPose& frame : held) {
    const auto after = std::ranges::upper_bound(presented, frame.ticks, {}, &TimedPose::ticks);
    if (after != presented.begin()) {
      latencies.push_back(frame.ticks - std::prev(after)->ticks);
    }
  }
  return latencies;
}

}  // namespace bench
