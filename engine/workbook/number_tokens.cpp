#include "engine/workbook/number_tokens.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "engine/text/fold.h"
#include "engine/text/utf8.h"

namespace engine {

namespace {

bool begins_with(std::string_view text, std::string_view lower_case) {
  return text.size() >= lower_case.size() &&
         std::ranges::equal(text.substr(0, lower_case.size()), lower_case, {},
                            [](char c) { return lower_ascii(c); });
}

std::size_t run_of(std::string_view text, char letter) {
  std::size_t size = 0;
  while (size < text.size() && lower_ascii(text[size]) == letter) ++size;
  return size;
}

// Cuts the code of a section into tokens.
class Scanner {
 public:
  explicit Scanner(const Section& section) : rest_(section.code), is_date_(section.is_date) {}

  NumberTokens scan() && {
    while (!rest_.empty()) take_next();
    return std::move(tokens_);
  }

 private:
  void take_next() {
    switch (rest_.front()) {
      case '\\':
        rest_.remove_prefix(1);
        return add(TokenKind::kLiteral, character());
      case '_':
        rest_.remove_prefix(1);
        return add(TokenKind::kBlank, character());
      case '*':
        rest_.remove_prefix(1);
        rest_.remove_prefix(character());
        return;
      case '"': {
        const std::size_t end = std::min(rest_.find('"', 1), rest_.size());
        tokens_.push_back({TokenKind::kLiteral, rest_.substr(1, end - 1)});
        return rest_.remove_prefix(std::min(end + 1, rest_.size()));
      }
      case '[':
        return take_bracket();
      case '@':
        return add(TokenKind::kText, 1);
      default:
        if (!(is_date_ ? take_date() : take_number())) add(TokenKind::kLiteral, character());
    }
  }

  // A currency with its country, elapsed time, or what shows nothing: a colour, a condition.
  void take_bracket() {
    const std::size_t end = std::min(rest_.find(']'), rest_.size() - 1);
    const std::string_view bracket = rest_.substr(0, end + 1);
    rest_.remove_prefix(end + 1);
    if (bracket.starts_with("[$")) {
      const std::size_t symbol = std::min(bracket.find('-', 2), bracket.size() - 1);
      tokens_.push_back({TokenKind::kLiteral, bracket.substr(2, symbol - 2)});
    } else if (bracket.size() > 2 && is_elapsed(bracket)) {
      tokens_.push_back({TokenKind::kElapsed, bracket.substr(1, bracket.size() - 2)});
    }
  }

  bool take_number() {
    const char first = rest_.front();
    if (begins_with(rest_, "general")) return add(TokenKind::kGeneral, 7), true;
    if (begins_with(rest_, "e+") || begins_with(rest_, "e-"))
      return add(TokenKind::kExponent, 2), true;
    constexpr std::string_view kSigns = "0#?.,%/";
    constexpr TokenKind kKinds[] = {TokenKind::kDigit, TokenKind::kDigit, TokenKind::kDigit,
                                    TokenKind::kPoint, TokenKind::kComma, TokenKind::kPercent,
                                    TokenKind::kSlash};
    const std::size_t found = kSigns.find(first);
    if (found == std::string_view::npos) return false;
    add(kKinds[found], 1);
    return true;
  }

  bool take_date() {
    for (const std::string_view half : {std::string_view("am/pm"), std::string_view("a/p")})
      if (begins_with(rest_, half)) return add(TokenKind::kHalf, half.size()), true;
    if (rest_.front() == '.' && rest_.size() > 1 && rest_[1] == '0')
      return add(TokenKind::kFraction, 1 + run_of(rest_.substr(1), '0')), true;
    constexpr std::string_view kLetters = "yemdhs";
    constexpr TokenKind kKinds[] = {TokenKind::kYear, TokenKind::kYear, TokenKind::kMonth,
                                    TokenKind::kDay,  TokenKind::kHour, TokenKind::kSecond};
    const char letter = lower_ascii(rest_.front());
    const std::size_t found = kLetters.find(letter);
    if (found == std::string_view::npos) return false;
    add(kKinds[found], run_of(rest_, letter));
    return true;
  }

  std::size_t character() {
    std::string_view behind = rest_;
    if (!behind.empty()) take_character(behind);
    return rest_.size() - behind.size();
  }
  void add(TokenKind kind, std::size_t size) {
    tokens_.push_back({kind, rest_.substr(0, size)});
    rest_.remove_prefix(size);
  }

  std::string_view rest_;
  bool is_date_;
  NumberTokens tokens_;
};

}  // namespace

NumberTokens tokens_of(const Section& section) { return Scanner(section).scan(); }

void append_literal(std::string& out, const NumberToken& token) {
  if (token.kind == TokenKind::kBlank) out.push_back(' ');
  else if (token.kind == TokenKind::kPercent) out.push_back('%');
  else if (token.kind == TokenKind::kLiteral) out.append(token.text);
}

}  // namespace engine
