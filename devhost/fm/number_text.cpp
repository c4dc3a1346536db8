#include "devhost/fm/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace devhost {
namespace {

constexpr double kLargestExactInteger = 9007199254740992.0;

bool is_exact_integer(double value) {
  return std::abs(value) <= kLargestExactInteger && value == std::trunc(value);
}

// Whether the value is the double nearest to a decimal of up to six places that the host can hold,
// as most numbers are; to tell costs a fraction of what rounding does.
bool is_short_decimal(double value) {
  constexpr double kScale = 1e6;
  const double scaled = value * kScale;
  return is_exact_integer(scaled) && scaled / kScale == value;
}

// A number as d.ddd * 10^exponent, the digits without trailing zeros.
struct Decimal {
  std::string digits;
  int exponent = 0;
};

Decimal decimal_of(double magnitude) {
  char buffer[40] = {};
  const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), magnitude,
                                          std::chars_format::scientific, kPrecision - 1);
  const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
  const std::size_t mark = text.find('e');
  Decimal decimal;
  decimal.digits = text.substr(0, 1);
  decimal.digits += text.substr(2, mark - 2);
  decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
  const std::string_view exponent = text.substr(text[mark + 1] == '+' ? mark + 2 : mark + 1);
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.exponent);
  return decimal;
}

// The point stands before, inside or behind the digits.
std::string plain(const Decimal& decimal) {
  const int before = decimal.exponent + 1;
  const int count = static_cast<int>(decimal.digits.size());
  std::string text = decimal.digits;
  if (before <= 0) {
    text.insert(0, static_cast<std::size_t>(-before), '0').insert(0, 1, '.');
  } else if (before < count) {
    text.insert(static_cast<std::size_t>(before), 1, '.');
  } else {
    text.append(static_cast<std::size_t>(before - count), '0');
  }
  return text;
}

// What of a text counts for its number, as digits that std::from_chars reads.
std::string digits_of(std::u16string_view text) {
  std::string digits;
  bool point = false;
  for (const char16_t unit : text) {
    if (unit >= u'0' && unit <= u'9') {
      digits += static_cast<char>(unit);
    } else if (unit == u'.' && !point) {
      point = true;
      digits += '.';
    } else if (unit == u'-' && digits.empty()) {
      digits = '-';
    }
  }
  return digits;
}

}  // namespace

double round_significant(double value, int digits) {
  if (!std::isfinite(value)) return value;
  if (digits >= kPrecision && (is_exact_integer(value) || is_short_decimal(value))) return value;
  char buffer[40] = {};
  const int after_point = std::clamp(digits, 1, std::numeric_limits<double>::max_digits10) - 1;
  const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), value,
                                          std::chars_format::scientific, after_point);
  double rounded = value;
  std::from_chars(std::begin(buffer), end, rounded);
  return rounded;
}

std::u16string text_from_number(double value) {
  if (!std::isfinite(value)) return u"?";
  if (value == 0) return u"0";
  std::string text = is_exact_integer(value) ? std::to_string(static_cast<long long>(value))
                                             : plain(decimal_of(std::abs(value)));
  if (value < 0 && text[0] != '-') text.insert(0, 1, '-');
  return {text.begin(), text.end()};
}

double number_from_text(std::u16string_view text) {
  const std::string digits = digits_of(text);
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc::result_out_of_range) return value;
  // Too small a number is read as out of range too; its digits before the point are all zero.
  const std::size_t first = digits.find_first_not_of("-0");
  if (first == std::string::npos || digits[first] == '.') return 0;
  return std::numeric_limits<double>::infinity();
}

}  // namespace devhost
