// Operands and operators take turns, whatever binds tighter, so all there is to remember is which
// parentheses are open. What asks for more is left to the parser: references of other shapes and
// the operators over them, arrays, errors, tables, other files, letters that become capitals.
#include "engine/formula/plain_formula.h"

#include <array>
#include <cstdint>
#include <utility>

#include "engine/formula/scan.h"

namespace engine::formula {
namespace {

// Within a pair of parentheses the parser nests once for each level of operators at most.
constexpr std::size_t kMaxOpen = 31;
constexpr std::size_t kOperatorLevels = 7;
static_assert((kMaxOpen + 1) * kOperatorLevels <= std::size_t{kMaxDepth});

constexpr int kMaxLetters = 3;
constexpr int kMaxDigits = 7;

bool is_capital(char c) { return c >= 'A' && c <= 'Z'; }
bool is_sign(char c) { return c == '+' || c == '-'; }

// The text ends in a zero, so one character may always be looked at.
class Scanner {
 public:
  Scanner(const std::string& text, const ParseOptions& options,
          const std::function<bool(std::string_view)>& known)
      : options_(options), known_(known), p_(text.data()), end_(p_ + text.size()) {}

  bool run() {
    do {
      if (!operand()) return false;
    } while (operator_follows());
    return p_ == end_ && open_ == 0;
  }

 private:
  void skip_blanks() {
    while (is_blank(*p_)) ++p_;
  }

  // Goes behind an operand, inside of all parentheses that open before it.
  bool operand() {
    while (true) {
      skip_blanks();
      const bool may_be_left_out = std::exchange(argument_begins_, false);
      if (may_be_left_out && (*p_ == ',' || *p_ == ')')) return true;
      if (is_sign(*p_)) ++p_;
      skip_blanks();
      if (*p_ == '(') {
        if (!open(false)) return false;
        continue;
      }
      if (*p_ == '"') return text();
      if (*p_ == '\'') return quoted_sheet() && address();
      if (is_digit(*p_)) return number();
      if (address()) return true;
      if (!is_letter(*p_)) return false;
      const Word kind = word();
      if (kind != Word::kCall) return kind == Word::kSheet ? address() : kind == Word::kName;
    }
  }

  // Closes what ends behind an operand and takes the operator or comma that another one follows.
  bool operator_follows() {
    for (;; ++p_) {
      skip_blanks();
      switch (*p_) {
        case '%':
          break;
        case ')':
          if (open_ == 0) return false;
          --open_;
          break;
        case ',':
          return argument_ends();
        case '<':
        case '>':
          if (p_[1] == '=' || (*p_ == '<' && p_[1] == '>')) ++p_;
          [[fallthrough]];
        case '=':
        case '&':
        case '+':
        case '-':
        case '*':
        case '/':
        case '^':
          ++p_;
          return true;
        default:
          return false;
      }
    }
  }

  // Stands on the parenthesis.
  bool open(bool is_call) {
    if (open_ == kMaxOpen) return false;
    arguments_[open_++] = is_call ? 1 : 0;
    argument_begins_ = is_call;
    ++p_;
    return true;
  }

  // A comma outside of a call joins references.
  bool argument_ends() {
    if (open_ == 0 || arguments_[open_ - 1] == 0) return false;
    ++p_;
    argument_begins_ = true;
    return ++arguments_[open_ - 1] <= options_.max_arguments;
  }

  bool text() {
    const char* const begin = ++p_;
    for (; p_ != end_; ++p_) {
      if (*p_ != '"') continue;
      if (p_[1] != '"') return p_++ - begin <= kMaxTextConstant;
      ++p_;
    }
    return false;
  }

  bool number() {
    while (is_digit(*p_)) ++p_;
    if (*p_ == '.') ++p_;
    while (is_digit(*p_)) ++p_;
    return !is_word(*p_) && *p_ != '!';
  }

  // Behind A1 or $A$1, in capitals and inside the grid; null when something else stands there.
  const char* cell_end(const char* p) const {
    if (*p == '$') ++p;
    const char* const letters = p;
    int column = 0;
    for (; is_capital(*p) && p - letters < kMaxLetters; ++p) column = column * 26 + (*p - 'A' + 1);
    if (p == letters || column > options_.grid.columns) return nullptr;
    if (*p == '$') ++p;
    const char* const digits = p;
    if (*p == '0') return nullptr;
    int row = 0;
    for (; is_digit(*p) && p - digits < kMaxDigits; ++p) row = row * 10 + (*p - '0');
    const bool ends = !is_word(*p) && *p != '$' && *p != '(' && *p != '!' && *p != '[';
    return p != digits && row <= options_.grid.rows && ends ? p : nullptr;
  }

  // A1 or A1:B2; stays where neither stands.
  bool address() {
    const char* behind = cell_end(p_);
    if (behind != nullptr && *behind == ':') behind = cell_end(behind + 1);
    if (behind == nullptr) return false;
    p_ = behind;
    return true;
  }

  enum class Word { kOther, kCall, kSheet, kName };

  // What a word without an address of its own is, which tells what follows it.
  Word word() {
    bool has_digits = false;
    bool has_small = false;
    const char* p = p_;
    for (; is_letter(*p) || is_digit(*p) || *p == '.'; ++p) {
      has_digits |= is_digit(*p);
      has_small |= is_letter(*p) && !is_capital(*p);
    }
    if (is_word(*p)) return Word::kOther;
    const std::string_view name(p_, static_cast<std::size_t>(p - p_));
    if (*p == '!') {
      p_ = p + 1;
      return known_(name) ? Word::kSheet : Word::kOther;
    }
    if (has_small) return Word::kOther;
    p_ = p;
    if (*p == '(') return open(true) ? Word::kCall : Word::kOther;
    // Beyond the grid an address is no name.
    return has_digits ? Word::kOther : Word::kName;
  }

  // 'Sheet 1'!
  bool quoted_sheet() {
    const char* const begin = ++p_;
    while (p_ != end_ && *p_ != '\'') {
      if (*p_ == '[' || *p_ == ']' || *p_ == ':') return false;
      ++p_;
    }
    const std::string_view name(begin, static_cast<std::size_t>(p_ - begin));
    if (p_ == end_ || p_[1] != '!' || name.empty()) return false;
    p_ += 2;
    return known_(name);
  }

  const ParseOptions& options_;
  const std::function<bool(std::string_view)>& known_;
  const char* p_;
  const char* const end_;
  bool argument_begins_ = false;
  std::size_t open_ = 0;
  std::array<std::uint16_t, kMaxOpen> arguments_{};  // of each open call; 0 where nothing is called
};

}  // namespace

bool is_plain_formula(const std::string& text, const ParseOptions& options,
                      const std::function<bool(std::string_view)>& known) {
  return options.notation == Notation::kA1 && text.size() <= kMaxFormulaLength &&
         Scanner(text, options, known).run();
}

}  // namespace engine::formula
