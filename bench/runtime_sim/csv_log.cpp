#include "csv_log.h"

#include <stdexcept>

#include "base/clock.h"
#include "runtime/pose_matrix.h"

namespace bench {
namespace {

std::ofstream OpenCsv(const std::filesystem::path& file, const char* columns) {
  std::ofstream stream;
  if (file.empty()) {
    return stream;
  }
  stream.open(file, std::ios::binary | std::ios::trunc);
  if (!stream) {
    throw std::runtime_error("cannot write " + file.string());
  }
  stream.precision(9);  // enough for every float to come back as it was
  stream << columns;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      stream << ",m" << row << column;
    }
  }
  stream << '\n';
  return stream;
}

void WriteMatrix(std::ofstream& stream, const runtime::PoseMatrix& matrix) {
  for (const auto& row : matrix.m) {
    for (const float value : row) {
      stream << ',' << value;
    }
  }
  stream << '\n';
}

}  // namespace

FrameCsv::FrameCsv(const std::filesystem::path& file)
    : stream_(OpenCsv(file, "frame,qpc,qpc_frequency,presented_qpc,render_qpc,pose_qpc,missed,sync_wait")) {}

void FrameCsv::Add(const FrameReport& report) {
  if (stream_.is_open()) {
    stream_ << report.index << ',' << report.presentTicks << ',' << TicksPerSecond() << ',' << report.presentedTicks
            << ',' << report.renderTicks << ',' << report.poseTicks << ',' << report.missedIntervals << ','
            << report.syncWaitTicks;
    WriteMatrix(stream_, report.pose);
  }
}

PoseCsv::PoseCsv(const std::filesystem::path& file)
    : stream_(OpenCsv(file, "pose,qpc,qpc_frequency,valid,qw,qx,qy,qz")) {}

void PoseCsv::Add(const PoseRecord& record) {
  const std::lock_guard lock(mutex_);
  if (stream_.is_open()) {
    const vr::HmdQuaternion_t& rotation = record.pose.qRotation;
    stream_ << number_++ << ',' << record.ticks << ',' << TicksPerSecond() << ',' << (record.pose.poseIsValid ? 1 : 0)
            << ',' << rotation.w << ',' << rotation.x << ',' << rotation.y << ',' << rotation.z;
    WriteMatrix(stream_, runtime::WorldFromHead(record.pose));
  }
}

}  // namespace bench
