#include "line.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace ombrel::test {

std::string Line::Exactly(double number) {
  if (std::isnan(number)) return "nan";
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%a", number);
  return text.data();
}

}  // namespace ombrel::test
