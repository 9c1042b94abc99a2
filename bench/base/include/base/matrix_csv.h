#pragma once

#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

namespace bench {

// A file of comma-separated values, the last columns of which ("m00" to "m23" or "m33") are a matrix of four columns. It
// stays closed when `file` is empty; throws std::runtime_error when it cannot be made.
[[nodiscard]] std::ofstream OpenMatrixCsv(const std::filesystem::path& file, std::string_view firstColumns, int rows);

// The rest of a line: the matrix, row by row. Every float comes back as it was.
void EndLine(std::ofstream& csv, std::span<const float> matrix);

}  // namespace bench
