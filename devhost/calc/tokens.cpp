#include "devhost/calc/tokens.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

constexpr char16_t kPilcrow = u'¶';

constexpr std::pair<std::u16string_view, Symbol> kWords[] = {
    {u"and", Symbol::kAnd},
    {u"or", Symbol::kOr},
    {u"xor", Symbol::kXor},
    {u"not", Symbol::kNot},
};

// Longer ones first, so that "<=" is not read as "<".
constexpr std::pair<std::u16string_view, Symbol> kSymbols[] = {
    {u"<=", Symbol::kLessOrEqual}, {u">=", Symbol::kGreaterOrEqual}, {u"<>", Symbol::kNotEqual},
    {u"≤", Symbol::kLessOrEqual},  {u"≥", Symbol::kGreaterOrEqual},  {u"≠", Symbol::kNotEqual},
    {u"<", Symbol::kLess},         {u">", Symbol::kGreater},         {u"=", Symbol::kEqual},
    {u"(", Symbol::kOpen},         {u")", Symbol::kClose},           {u"[", Symbol::kOpenBracket},
    {u"]", Symbol::kCloseBracket}, {u";", Symbol::kSemicolon},       {u"&", Symbol::kConcatenate},
    {u"+", Symbol::kPlus},         {u"-", Symbol::kMinus},           {u"*", Symbol::kTimes},
    {u"/", Symbol::kDivide},       {u"^", Symbol::kPower},
};

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// The signs of the language that are not ASCII, and the replacement of broken input, end a name.
bool is_letter(char16_t unit) {
  if (unit < 0x80) {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit == u'_';
  }
  return unit > 0xBF && unit != u'≤' && unit != u'≥' && unit != u'≠' && unit != 0xFFFD;
}

bool is_name_part(char16_t unit) { return is_letter(unit) || is_digit(unit) || unit == u'.'; }

class Tokenizer {
 public:
  Tokenizer(std::u16string_view text, int first_line) : rest_(text) {
    position_.line = first_line;
    if (rest_.starts_with(u'\xFEFF')) rest_.remove_prefix(1);
  }

  Token next() {
    skip_space();
    Token token;
    token.position = position_;
    read(token);
    token.end = position_;
    return token;
  }

 private:
  char16_t at(std::size_t index) const { return index < rest_.size() ? rest_[index] : u'\0'; }

  void advance(std::size_t count) {
    for (; count > 0; --count) {
      const char16_t unit = rest_[0];
      rest_.remove_prefix(1);
      if (unit == u'\n' || (unit == u'\r' && at(0) != u'\n')) {
        ++position_.line;
        position_.column = 1;
      } else if (unit < 0xDC00 || unit > 0xDFFF) {
        ++position_.column;
      }
    }
  }

  void skip_space() {
    while (!rest_.empty()) {
      if (rest_[0] <= u' ' || rest_[0] == 0xA0) {
        advance(1);
      } else if (rest_.starts_with(u"//")) {
        advance(std::min(rest_.find_first_of(u"\r\n"), rest_.size()));
      } else if (rest_.starts_with(u"/*")) {
        const std::size_t end = rest_.find(u"*/", 2);
        if (end == std::u16string_view::npos)
          throw UnfinishedText(position_, "comment without end");
        advance(end + 2);
      } else {
        return;
      }
    }
  }

  void read(Token& token) {
    if (rest_.empty()) return;
    const char16_t unit = rest_[0];
    if (is_digit(unit) || (unit == u'.' && is_digit(at(1)))) return read_number(token);
    if (unit == u'"') return read_text(token);
    if (unit == u'$') return read_variable(token);
    if (is_letter(unit)) return read_name(token);
    if (unit == kPilcrow) {
      token.kind = Token::Kind::kText;
      token.text = u"\r";
      return advance(1);
    }
    read_symbol(token);
  }

  void take(Token& token, std::size_t length) {
    token.text = std::u16string(rest_.substr(0, length));
    advance(length);
  }

  std::size_t digits_from(std::size_t index) const {
    while (is_digit(at(index))) ++index;
    return index;
  }

  void read_number(Token& token) {
    token.kind = Token::Kind::kNumber;
    std::size_t length = digits_from(0);
    if (at(length) == u'.') length = digits_from(length + 1);
    take(token, length);
  }

  void read_variable(Token& token) {
    token.kind = Token::Kind::kVariable;
    std::size_t start = at(1) == u'$' ? 2 : 1;
    std::size_t length = start;
    while (is_name_part(at(length))) ++length;
    if (length == start) throw SyntaxError(position_, "a variable needs a name after the $");
    take(token, length);
  }

  void read_name(Token& token) {
    std::size_t length = 1;
    while (is_name_part(at(length))) ++length;
    token.kind = Token::Kind::kName;
    take(token, length);
    for (const auto& [word, symbol] : kWords) {
      if (compare_ignoring_case(token.text, word) == 0) {
        token.kind = Token::Kind::kSymbol;
        token.symbol = symbol;
      }
    }
  }

  void read_text(Token& token) {
    token.kind = Token::Kind::kText;
    const Position start = position_;
    advance(1);
    while (!rest_.empty() && rest_[0] != u'"') {
      if (rest_[0] == u'\\' && (at(1) == u'"' || at(1) == u'\\' || at(1) == kPilcrow)) {
        token.text += at(1);
        advance(2);
      } else if (rest_.starts_with(u"\r\n")) {
        token.text += u'\r';
        advance(2);
      } else {
        token.text += rest_[0] == kPilcrow || rest_[0] == u'\n' ? u'\r' : rest_[0];
        advance(1);
      }
    }
    if (rest_.empty()) throw UnfinishedText(start, "text without closing quote");
    advance(1);
  }

  void read_symbol(Token& token) {
    for (const auto& [spelling, symbol] : kSymbols) {
      if (!rest_.starts_with(spelling)) continue;
      token.kind = Token::Kind::kSymbol;
      token.symbol = symbol;
      return take(token, spelling.size());
    }
    throw SyntaxError(position_, "unexpected character " +
                                     utf8_from_utf16(rest_.substr(0, character_length(rest_))));
  }

  std::u16string_view rest_;
  Position position_;
};

}  // namespace

std::vector<Token> tokenize(std::u16string_view text, int first_line) {
  Tokenizer tokenizer(text, first_line);
  std::vector<Token> tokens;
  do {
    tokens.push_back(tokenizer.next());
  } while (tokens.back().kind != Token::Kind::kEnd);
  return tokens;
}

}  // namespace devhost
