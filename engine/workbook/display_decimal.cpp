#include "engine/workbook/display_decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace engine {

namespace {

constexpr int kMaxDecimals = 30;

// The fifteen digits of a number that count, and the power of ten of the first.
struct Digits {
  std::string text;
  int power = 0;

  explicit Digits(double number) {
    std::array<char, 32> made{};
    const auto end = std::to_chars(made.data(), made.data() + made.size(), number,
                                   std::chars_format::scientific, kCount - 1)
                         .ptr;
    text.assign(made.data(), 1).append(made.data() + 2, kCount - 1);
    const char* exponent = made.data() + kCount + 2;  // behind "1.00000000000000e"
    std::from_chars(*exponent == '+' ? exponent + 1 : exponent, end, power);
  }

  // Keeps so many digits, rounding halves up; a digit more when that carries.
  void round_to(int count) {
    if (count >= kCount) return;
    const bool up = count >= 0 && text[static_cast<std::size_t>(count)] >= '5';
    text.resize(static_cast<std::size_t>(std::max(count, 0)));
    if (!up) return;
    std::size_t at = text.size();
    while (at > 0 && text[at - 1] == '9') text[--at] = '0';
    if (at > 0) {
      ++text[at - 1];
    } else {
      text.insert(0, "1");
      ++power;
    }
  }

 private:
  static constexpr int kCount = 15;
};

// A number that is not negative, with so many decimals and no more digits than count: zeros stand
// for the rest.
std::string fixed(double number, int decimals) {
  decimals = std::min(decimals, kMaxDecimals);
  Digits digits(number);
  digits.round_to(digits.power + 1 + decimals);
  std::string text;
  if (digits.power < 0) text.assign(static_cast<std::size_t>(-digits.power), '0');
  text.append(digits.text);
  const auto in_front = static_cast<std::size_t>(std::max(digits.power, 0)) + 1;
  text.resize(in_front + static_cast<std::size_t>(decimals), '0');
  if (decimals > 0) text.insert(in_front, ".");
  return text;
}

int exponent_of(double number) { return number == 0 ? 0 : Digits(number).power; }

void drop_zeros(std::string& decimals) {
  while (decimals.ends_with('0')) decimals.pop_back();
  if (decimals.ends_with('.')) decimals.pop_back();
}

// At most eleven characters without the sign, as in a cell whose format says nothing.
std::string general(double number) {
  constexpr int kRoom = 11;
  constexpr int kSmallest = -4;
  const double size = std::abs(number);
  std::string text;
  int exponent = exponent_of(size);
  if (size != 0 && (exponent < kSmallest || exponent >= kRoom)) {
    std::string digits = fixed(size / std::pow(10, exponent), 5);
    if (digits.starts_with("10")) {
      digits = "1";
      ++exponent;
    }
    if (digits.find('.') != std::string::npos) drop_zeros(digits);
    const std::string power = std::to_string(std::abs(exponent));
    text = digits + (exponent < 0 ? "E-" : "E+") + (power.size() < 2 ? "0" : "") + power;
  } else {
    const int in_front = std::max(exponent, 0) + 1;
    text = fixed(size, std::max(0, kRoom - 1 - in_front));
    if (text.find('.') != std::string::npos) drop_zeros(text);
  }
  return number < 0 ? "-" + text : text;
}

// A number without its sign, under the tokens of a section.
class NumberText {
 public:
  NumberText(const NumberTokens& tokens, double size) : tokens_(tokens), size_(size) {}

  std::string text() && {
    if (has(TokenKind::kGeneral) || has(TokenKind::kText)) return whole_text(general(size_));
    const auto slash = find(TokenKind::kSlash);
    if (slash > 0 && slash < tokens_.size() && tokens_[slash - 1].kind == TokenKind::kDigit)
      return fraction(slash);
    if (!has(TokenKind::kDigit)) return whole_text({});
    return decimal();
  }

 private:
  std::size_t find(TokenKind kind) const {
    const auto found = std::ranges::find(tokens_, kind, &NumberToken::kind);
    return static_cast<std::size_t>(found - tokens_.begin());
  }
  bool has(TokenKind kind) const { return find(kind) < tokens_.size(); }
  std::size_t count(std::size_t begin, std::size_t end) const {
    std::size_t digits = 0;
    for (std::size_t at = begin; at < end; ++at) digits += tokens_[at].kind == TokenKind::kDigit;
    return digits;
  }

  std::string whole_text(const std::string& number) const {
    std::string out;
    for (const NumberToken& token : tokens_) {
      if (token.kind == TokenKind::kGeneral || token.kind == TokenKind::kText) out.append(number);
      else append_literal(out, token);
    }
    return out;
  }

  std::string decimal() {
    power_ = find(TokenKind::kExponent);
    point_ = std::min(find(TokenKind::kPoint), power_);
    std::size_t last = 0;
    for (std::size_t at = 0; at < power_; ++at)
      if (tokens_[at].kind == TokenKind::kDigit) last = at;
    const std::size_t in_front = count(0, point_);
    const int decimals = static_cast<int>(count(point_, power_));
    for (std::size_t at = 0; at < power_; ++at) {
      if (tokens_[at].kind == TokenKind::kPercent) size_ *= 100;
      if (tokens_[at].kind != TokenKind::kComma) continue;
      const bool scales = at > last || (at < point_ && count(at, point_) == 0);
      if (scales && count(0, at) > 0) size_ /= 1000;
      else grouped_ |= count(0, at) > 0;
    }
    int exponent = 0;
    std::string digits;
    if (power_ < tokens_.size()) {
      const int step = std::max(1, static_cast<int>(in_front));
      const auto shift_to = [&](int power) {
        exponent = power - ((power % step) + step) % step;
        digits = fixed(size_ / std::pow(10, exponent), decimals);
      };
      shift_to(exponent_of(size_));
      if (std::min(digits.find('.'), digits.size()) > static_cast<std::size_t>(step))
        shift_to(exponent + step);
    } else {
      digits = fixed(size_, decimals);
    }
    const std::size_t end = std::min(digits.find('.'), digits.size());
    std::string out = integer(digits.substr(0, end));
    append_decimals(out, std::string_view(digits).substr(std::min(end + 1, digits.size())));
    append_exponent(out, exponent);
    return out;
  }

  // The part up to the point, from its end to its beginning.
  std::string integer(std::string digits) const {
    if (digits == "0") digits.clear();
    std::vector<std::string> pieces;
    std::size_t placed = 0;
    std::size_t left = count(0, point_);
    const auto place = [&](char digit) {
      if (grouped_ && placed > 0 && placed % 3 == 0) pieces.emplace_back(",");
      pieces.emplace_back(1, digit);
      ++placed;
    };
    const auto place_rest = [&] {
      for (; !digits.empty(); digits.pop_back()) place(digits.back());
    };
    if (left == 0) place_rest();
    for (std::size_t at = point_; at-- > 0;) {
      const NumberToken& token = tokens_[at];
      if (token.kind != TokenKind::kDigit) {
        append_literal(pieces.emplace_back(), token);
        continue;
      }
      if (!digits.empty()) {
        place(digits.back());
        digits.pop_back();
      } else if (token.text == "0") {
        place('0');
      } else if (token.text == "?") {
        pieces.emplace_back(" ");
      }
      if (--left == 0) place_rest();
    }
    std::string out;
    for (std::size_t at = pieces.size(); at-- > 0;) out.append(pieces[at]);
    return out;
  }

  void append_decimals(std::string& out, std::string_view digits) const {
    std::size_t shown = digits.find_last_not_of('0') + 1;  // as many as count
    std::size_t place = 0;
    for (std::size_t at = point_; at < power_; ++at)
      if (tokens_[at].kind == TokenKind::kDigit && ++place > shown && tokens_[at].text == "0")
        shown = place;
    place = 0;
    for (std::size_t at = point_; at < power_; ++at) {
      const NumberToken& token = tokens_[at];
      if (token.kind == TokenKind::kPoint) out.push_back('.');
      else if (token.kind != TokenKind::kDigit) append_literal(out, token);
      else if (place++ < shown) out.push_back(place <= digits.size() ? digits[place - 1] : '0');
      else if (token.text == "?") out.push_back(' ');
    }
  }

  void append_exponent(std::string& out, int exponent) const {
    if (power_ == tokens_.size()) return;
    out.push_back('E');
    if (exponent < 0) out.push_back('-');
    else if (tokens_[power_].text.back() == '+') out.push_back('+');
    const std::string digits = std::to_string(std::abs(exponent));
    const std::size_t room = count(power_, tokens_.size());
    if (digits.size() < room) out.append(room - digits.size(), '0');
    out.append(digits);
    for (std::size_t at = power_ + 1; at < tokens_.size(); ++at) append_literal(out, tokens_[at]);
  }

  // Whole part, numerator and denominator; the latter two are blanks when nothing is left for them.
  std::string fraction(std::size_t slash) const {
    std::size_t numerator = slash;
    while (numerator > 0 && tokens_[numerator - 1].kind == TokenKind::kDigit) --numerator;
    const std::size_t whole_digits = count(0, numerator);
    std::size_t end = slash + 1;
    long long stated = 0;  // the denominator, where the code names one
    for (; end < tokens_.size(); ++end) {
      const NumberToken& token = tokens_[end];
      const bool is_number = token.text.size() == 1 && token.text[0] >= '0' && token.text[0] <= '9';
      if (token.kind != TokenKind::kDigit && !is_number) break;
      if (is_number && stated < 100000) stated = stated * 10 + (token.text[0] - '0');
    }
    const std::size_t places = std::min<std::size_t>(end - slash - 1, 5);
    double whole = whole_digits > 0 ? std::floor(size_) : 0;
    const double part = size_ - whole;
    auto [above, below] = stated > 0
                              ? std::pair(std::llround(part * static_cast<double>(stated)), stated)
                              : nearest(part, static_cast<long long>(std::pow(10, places)) - 1);
    if (whole_digits > 0 && above == below) {
      whole += 1;
      above = 0;
    }
    const bool blank = whole_digits > 0 && above == 0;
    std::string out;
    bool shown = false;
    for (std::size_t at = 0; at < numerator; ++at) {
      if (tokens_[at].kind != TokenKind::kDigit) append_literal(out, tokens_[at]);
      else if (!std::exchange(shown, true) && (whole > 0 || blank)) out.append(fixed(whole, 0));
    }
    const std::string top = blank ? "" : std::to_string(above);
    const std::string bottom = blank ? "" : std::to_string(below);
    const auto pad = [&](std::size_t room, const std::string& text) {
      if (text.size() < room) out.append(room - text.size(), ' ');
    };
    pad(slash - numerator, top);
    out.append(top).append(blank ? " " : "/").append(bottom);
    pad(end - slash - 1, bottom);
    for (std::size_t at = end; at < tokens_.size(); ++at) append_literal(out, tokens_[at]);
    return out;
  }

  // The fraction nearest to a number below 2 or any whole one, by its continued fraction.
  static std::pair<long long, long long> nearest(double number, long long most) {
    long long above = 1;
    long long below = 0;
    long long former_above = 0;
    long long former_below = 1;
    double rest = number;
    while (rest < 1e15) {
      const auto digit = static_cast<long long>(rest);
      if (below > 0 && digit > (most - former_below) / below) break;
      former_above = std::exchange(above, digit * above + former_above);
      former_below = std::exchange(below, digit * below + former_below);
      const double left = rest - static_cast<double>(digit);
      if (left < 1e-12) break;
      rest = 1 / left;
    }
    if (below == 0) return {std::llround(std::min(number, 1e15)), 1};
    return {above, below};
  }

  const NumberTokens& tokens_;
  double size_;
  std::size_t point_ = 0;  // places among the tokens, behind the last without one
  std::size_t power_ = 0;
  bool grouped_ = false;
};

}  // namespace

std::string decimal_text(const NumberTokens& tokens, double number) {
  return NumberText(tokens, number).text();
}

}  // namespace engine
