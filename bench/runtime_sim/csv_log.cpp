#include "csv_log.h"

#include "base/clock.h"
#include "base/matrix_csv.h"
#include "runtime/pose_matrix.h"

namespace bench {
namespace {

constexpr int kRows = 3;

void EndLine(std::ofstream& stream, const runtime::PoseMatrix& matrix) {
  bench::EndLine(stream, std::span(&matrix.m[0][0], sizeof(matrix.m) / sizeof(float)));
}

}  // namespace

FrameCsv::FrameCsv(const std::filesystem::path& file)
    : stream_(
          OpenMatrixCsv(file, "frame,qpc,qpc_frequency,presented_qpc,render_qpc,pose_qpc,missed,sync_wait", kRows)) {}

void FrameCsv::Add(const FrameReport& report) {
  if (stream_.is_open()) {
    stream_ << report.index << ',' << report.presentTicks << ',' << TicksPerSecond() << ',' << report.presentedTicks
            << ',' << report.renderTicks << ',' << report.poseTicks << ',' << report.missedIntervals << ','
            << report.syncWaitTicks;
    EndLine(stream_, report.pose);
  }
}

PoseCsv::PoseCsv(const std::filesystem::path& file)
    : stream_(OpenMatrixCsv(file, "pose,qpc,qpc_frequency,valid,qw,qx,qy,qz", kRows)) {}

void PoseCsv::Add(const PoseRecord& record) {
  const std::lock_guard lock(mutex_);
  if (stream_.is_open()) {
    const vr::HmdQuaternion_t& rotation = record.pose.qRotation;
    stream_ << number_++ << ',' << record.ticks << ',' << TicksPerSecond() << ',' << (record.pose.poseIsValid ? 1 : 0)
            << ',' << rotation.w << ',' << rotation.x << ',' << rotation.y << ',' << rotation.z;
    EndLine(stream_, runtime::WorldFromHead(record.pose));
  }
}

}  // namespace bench
