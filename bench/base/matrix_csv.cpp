#include "base/matrix_csv.h"

#include <limits>
#include <stdexcept>

namespace bench {

std::ofstream OpenMatrixCsv(const std::filesystem::path& file, std::string_view firstColumns, int rows) {
  std::ofstream csv;
  if (file.empty()) return csv;
  csv.open(file, std::ios::binary | std::ios::trunc);
  if (!csv) throw std::runtime_error("cannot write " + file.string());
  csv.precision(std::numeric_limits<float>::max_digits10);
  csv << firstColumns;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < 4; ++column) csv << ",m" << row << column;
  }
  csv << '\n';
  return csv;
}

void EndLine(std::ofstream& csv, std::span<const float> matrix) {
  for (const float value : matrix) csv << ',' << value;
  csv << '\n';
}

}  // namespace bench
