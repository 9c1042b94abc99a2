#include "csv_table.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {

std::vector<std::string> Split(std::string line) {
  if (line.ends_with('\r')) {
    line.pop_back();
  }
  std::vector<std::string> values;
  std::size_t start = 0;
  for (std::size_t comma = line.find(','); comma != std::string::npos; comma = line.find(',', start)) {
    values.push_back(line.substr(start, comma - start));
    start = comma + 1;
  }
  values.push_back(line.substr(start));
  return values;
}

}  // namespace

std::size_t CsvTable::Column(const std::string& name) const {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) {
    throw std::runtime_error("there is no column " + name);
  }
  return static_cast<std::size_t>(found - names.begin());
}

CsvTable ReadCsv(std::istream& stream) {
  CsvTable table;
  std::string line;
  if (std::getline(stream, line)) {
    table.names = Split(line);
  }
  while (std::getline(stream, line)) {
    std::vector<std::string> values = Split(line);
    if (values.size() == table.names.size()) {
      table.rows.push_back(std::move(values));
    }
  }
  return table;
}

CsvTable ReadCsvFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw std::runtime_error("cannot read " + file.string());
  }
  return ReadCsv(stream);
}

}  // namespace bench
