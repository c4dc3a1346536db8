#include "engine/workbook/display_date.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "engine/text/fold.h"
#include "engine/workbook/dates.h"

namespace engine {

namespace {

constexpr std::string_view kMonths[] = {"January",   "February", "March",    "April",
                                        "May",       "June",     "July",     "August",
                                        "September", "October",  "November", "December"};
constexpr std::string_view kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};

void append_padded(std::string& out, long long number, std::size_t width) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) out.append(width - digits.size(), '0');
  out.append(digits);
}

// An m behind hours or in front of seconds means minutes.
void tell_minutes_from_months(NumberTokens& tokens) {
  const auto counts = [](const NumberToken& token) {
    return token.kind >= TokenKind::kYear && token.kind != TokenKind::kHalf;
  };
  const NumberToken* former = nullptr;
  for (std::size_t at = 0; at < tokens.size(); ++at) {
    NumberToken& token = tokens[at];
    if (!counts(token)) continue;
    if (token.kind == TokenKind::kMonth && token.text.size() <= 2) {
      const auto next =
          std::find_if(tokens.begin() + static_cast<std::ptrdiff_t>(at) + 1, tokens.end(), counts);
      const bool behind_hours =
          former &&
          (former->kind == TokenKind::kHour ||
           (former->kind == TokenKind::kElapsed && lower_ascii(former->text.front()) == 'h'));
      if (behind_hours || (next != tokens.end() && next->kind == TokenKind::kSecond))
        token.kind = TokenKind::kMinute;
    }
    former = &token;
  }
}

class DateText {
 public:
  explicit DateText(const NumberTokens& tokens) : tokens_(tokens) {
    for (const NumberToken& token : tokens) {
      half_days_ |= token.kind == TokenKind::kHalf;
      shows_seconds_ |=
          token.kind == TokenKind::kSecond ||
          (token.kind == TokenKind::kElapsed && lower_ascii(token.text.front()) == 's');
      if (token.kind == TokenKind::kFraction)
        decimals_ = static_cast<int>(std::min<std::size_t>(token.text.size() - 1, 3));
    }
  }

  // Seconds are rounded where they are the least that is shown.
  bool take(double serial, bool date1904) {
    if (shows_seconds_) {
      const double parts = 86400 * std::pow(10, decimals_);
      serial = std::round(serial * parts) / parts;
    }
    const auto found = date_of_serial(serial, date1904);
    if (!found) return false;
    date_ = *found;
    constexpr double kMillisecondsADay = 86400000;
    milliseconds_ = std::llround(serial * kMillisecondsADay);
    constexpr long long kSystemsApart = 1462;
    const long long day = milliseconds_ / 86400000 + (date1904 ? kSystemsApart : 0);
    weekday_ = static_cast<std::size_t>((day + 6) % 7);
    return true;
  }

  std::string text() const {
    std::string out;
    for (const NumberToken& token : tokens_) append(out, token);
    return out;
  }

 private:
  void append(std::string& out, const NumberToken& token) const {
    const std::size_t size = token.text.size();
    switch (token.kind) {
      case TokenKind::kYear:
        if (size <= 2 && lower_ascii(token.text.front()) == 'y')
          return append_padded(out, date_.year % 100, 2);
        return append_padded(out, date_.year, 4);
      case TokenKind::kMonth:
        return append_name(out, kMonths[static_cast<std::size_t>(date_.month - 1)], date_.month,
                           size);
      case TokenKind::kDay:
        return append_name(out, kDays[weekday_], date_.day, std::min<std::size_t>(size, 4));
      case TokenKind::kHour: {
        const int hour = half_days_ ? (date_.hour + 11) % 12 + 1 : date_.hour;
        return append_padded(out, hour, std::min<std::size_t>(size, 2));
      }
      case TokenKind::kMinute:
        return append_padded(out, date_.minute, size);
      case TokenKind::kSecond:
        return append_padded(out, date_.second, std::min<std::size_t>(size, 2));
      case TokenKind::kFraction: {
        std::string digits;
        append_padded(digits, date_.millisecond, 3);
        digits.resize(size - 1, '0');
        out.append(".").append(digits);
        return;
      }
      case TokenKind::kHalf:
        out.append(date_.hour < 12 ? "AM" : "PM", size > 3 ? 2 : 1);
        return;
      case TokenKind::kElapsed: {
        const char unit = lower_ascii(token.text.front());
        return append_padded(out,
                             milliseconds_ / (unit == 'h'   ? 3600000
                                              : unit == 'm' ? 60000
                                                            : 1000),
                             size);
      }
      default:
        return append_literal(out, token);
    }
  }

  // 7, 07, Jul, July, J.
  static void append_name(std::string& out, std::string_view name, int number, std::size_t size) {
    if (size <= 2) append_padded(out, number, size);
    else out.append(name.substr(0, size == 3 ? 3 : size == 5 ? 1 : name.size()));
  }

  const NumberTokens& tokens_;
  DateTime date_;
  long long milliseconds_ = 0;
  std::size_t weekday_ = 0;
  int decimals_ = 0;
  bool half_days_ = false;
  bool shows_seconds_ = false;
};

}  // namespace

std::string date_text(NumberTokens tokens, double serial, bool date1904) {
  tell_minutes_from_months(tokens);
  DateText made(tokens);
  return made.take(serial, date1904) ? made.text() : std::string();
}

}  // namespace engine
