#pragma once

#include <string>
#include <type_traits>

namespace ombrel::test {

// One line of words, in which the model and the driver's own calls are compared. Numbers stand to the last bit; one
// that is none is just that, whatever its bits.
class Line {
 public:
  explicit Line(const char* first) : text_(first) {}

  template <typename Number>
  Line& operator<<(Number number) {
    static_assert(std::is_arithmetic_v<Number>);
    text_ += ' ';
    if constexpr (std::is_floating_point_v<Number>) {
      text_ += Exactly(static_cast<double>(number));
    } else {
      text_ += std::to_string(number);
    }
    return *this;
  }
  template <typename Numbers>
  Line& All(const Numbers& numbers) {
    for (const auto number : numbers) *this << number;
    return *this;
  }

  operator std::string() const { return text_; }

 private:
  static std::string Exactly(double number);

  std::string text_;
};

}  // namespace ombrel::test
