#include "engine/text/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace engine {
namespace {

// Most numbers in workbooks have few decimals. One with at most six is a whole number of
// millionths: when that whole number, divided by a million, gives the same double again, its digits
// are a text that reads back. With at most 15 digits no shorter one can.
constexpr double kScale = 1e6;
constexpr double kMaxScaled = 1e15;
constexpr int kDecimals = 6;

constexpr std::array<double, 23> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// A number of at most this many digits is exact in a double.
constexpr int kExactDigits = 15;

char* write_millionths(char* out, std::uint64_t scaled) {
  constexpr auto kUnit = static_cast<std::uint64_t>(kScale);
  out = std::to_chars(out, out + kMaxNumberText, scaled / kUnit).ptr;
  auto decimals = scaled % kUnit;
  if (decimals == 0) return out;
  *out++ = '.';
  for (int i = kDecimals; i-- > 0;) {
    out[i] = static_cast<char>('0' + decimals % 10);
    decimals /= 10;
  }
  out += kDecimals;
  while (out[-1] == '0') --out;
  return out;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The common case without an exponent: the digits as a whole number, divided by a power of ten.
// Both are exact, so the quotient is the nearest double. Nothing when there are too many digits.
std::optional<double> parse_short(const char* at, const char* end) {
  std::uint64_t digits = 0;
  const char* const first = at;
  while (at != end && is_digit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  auto count = at - first;
  std::ptrdiff_t decimals = 0;
  if (count <= kExactDigits && at != end && *at == '.') {
    const char* const point = at++;
    while (at != end && is_digit(*at)) {
      if (++count > kExactDigits) return {};
      digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    }
    decimals = at - point - 1;
  }
  if (at != end || count == 0 || count > kExactDigits) return {};
  return static_cast<double>(digits) / kPowers[static_cast<std::size_t>(decimals)];
}

// Too small for a double is zero, too big is no number.
std::optional<double> parse_any(const char* at, const char* end) {
  double value = 0;
  const auto [stop, error] = std::from_chars(at, end, value);
  if (stop != end || error == std::errc::invalid_argument) return {};
  if (error == std::errc()) return value;
  const std::string_view text(at, static_cast<std::size_t>(end - at));
  const auto exponent = text.find_first_of("eE");
  const bool small = exponent == std::string_view::npos ? text.front() == '0' || text.front() == '.'
                                                        : text.substr(exponent + 1).front() == '-';
  return small ? std::optional<double>(0.0) : std::nullopt;
}

}  // namespace

char* write_number(char* out, double value) {
  const double size = std::fabs(value);
  const double scaled = size * kScale;
  if (scaled < kMaxScaled) {
    // A wrong rounding only misses the short way. NOLINTNEXTLINE(bugprone-incorrect-roundings)
    const auto whole = static_cast<std::uint64_t>(scaled + 0.5);
    if (static_cast<double>(whole) / kScale == size) {
      if (value < 0) *out++ = '-';
      return write_millionths(out, whole);
    }
  }
  char* const end = std::to_chars(out, out + kMaxNumberText, value).ptr;
  if (auto* const e =
          static_cast<char*>(std::memchr(out, 'e', static_cast<std::size_t>(end - out)))) {
    *e = 'E';
  }
  return end;
}

void append_number(std::string& out, double value) {
  std::array<char, kMaxNumberText> text{};
  out.append(text.data(), write_number(text.data(), value));
}

char* write_integer(char* out, long long value) {
  return std::to_chars(out, out + kMaxNumberText, value).ptr;
}

void append_integer(std::string& out, long long value) {
  std::array<char, kMaxNumberText> text{};
  out.append(text.data(), write_integer(text.data(), value));
}

std::optional<double> parse_number(std::string_view text) {
  const char* at = text.data();
  const char* end = at + text.size();
  while (at != end && is_blank(*at)) ++at;
  while (at != end && is_blank(end[-1])) --end;
  const bool negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  // Words such as "inf" are not numbers here.
  if (at == end || !(is_digit(*at) || *at == '.')) return {};
  auto value = parse_short(at, end);
  if (!value) value = parse_any(at, end);
  if (value && negative) value = -*value;
  return value;
}

}  // namespace engine
