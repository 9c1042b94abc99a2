#pragma once

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace bench {

/// A file of comma-separated values with a line of names on top; no quotes.
struct CsvTable {
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> rows;

  /// The number of a column; throws std::runtime_error if there is none of that name.
  [[nodiscard]] std::size_t Column(const std::string& name) const;
};

/// Lines with another number of values than names are left out: a program that was killed leaves one behind.
[[nodiscard]] CsvTable ReadCsv(std::istream& stream);
/// Throws std::runtime_error if the file cannot be read.
[[nodiscard]] CsvTable ReadCsvFile(const std::filesystem::path& file);

}  // namespace bench
