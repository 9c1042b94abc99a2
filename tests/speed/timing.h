#pragma once

#include <cstdint>

#include "pose_cases.h"

namespace ombrel::test {

// Nanoseconds for one of a number of calls, each settled before the next. These loops are compiled as the driver is, not
// as tests are.
[[nodiscard]] double TimeNothing(int calls);  // what the loop and settling take
[[nodiscard]] double TimePoseFloor(int calls);
[[nodiscard]] double TimeFormulaFloor(const PoseFormatCase& format, const FormulaCase& formula, int calls);
[[nodiscard]] double TimePoses(const PoseFormatCase& format, int calls);
[[nodiscard]] double TimeControllerFloor(int calls);
// With `changes`, each record differs from the one before.
[[nodiscard]] double TimeControllerRecords(bool changes, int calls);

}  // namespace ombrel::test
