#include "engine/workbook/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace engine {

namespace {

struct BuiltIn {
  std::uint32_t id;
  std::string_view code;
};
constexpr BuiltIn kBuiltIn[] = {
    {0, "General"},
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {5, R"("$"#,##0_);\("$"#,##0\))"},
    {6, R"("$"#,##0_);[Red]\("$"#,##0\))"},
    {7, R"("$"#,##0.00_);\("$"#,##0.00\))"},
    {8, R"("$"#,##0.00_);[Red]\("$"#,##0.00\))"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, R"(# ??/??)"},
    {14, "mm-dd-yy"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "m/d/yy h:mm"},
    {37, R"(#,##0_);\(#,##0\))"},
    {38, R"(#,##0_);[Red]\(#,##0\))"},
    {39, R"(#,##0.00_);\(#,##0.00\))"},
    {40, R"(#,##0.00_);[Red]\(#,##0.00\))"},
    {41, R"(_(* #,##0_);_(* \(#,##0\);_(* "-"_);_(@_))"},
    {42, R"(_("$"* #,##0_);_("$"* \(#,##0\);_("$"* "-"_);_(@_))"},
    {43, R"(_(* #,##0.00_);_(* \(#,##0.00\);_(* "-"??_);_(@_))"},
    {44, R"(_("$"* #,##0.00_);_("$"* \(#,##0.00\);_("$"* "-"??_);_(@_))"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mm:ss.0"},
    {48, "##0.0E+0"},
    {49, "@"},
};

constexpr std::size_t kMaxSections = 4;

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool equal_lower(std::string_view text, std::string_view lower_case) {
  if (text.size() != lower_case.size()) return false;
  for (std::size_t at = 0; at < text.size(); ++at)
    if (lower(text[at]) != lower_case[at]) return false;
  return true;
}

// The instructions of a code: plain characters and whole brackets, without what stands for itself.
class Instructions {
 public:
  explicit Instructions(std::string_view code) : rest_(code) {}

  // False at the end and at a quote or bracket that is not closed.
  bool next() {
    while (!rest_.empty()) {
      switch (rest_.front()) {
        case '\\':
        case '_':
        case '*':
          rest_.remove_prefix(rest_.size() == 1 ? 1 : 2);
          break;
        case '"':
          if (!take_through('"')) return false;
          break;
        case '[':
          return take_through(']');
        default:
          take(1);
          return true;
      }
    }
    return false;
  }

  // A bracket with its content, or one character.
  std::string_view token() const { return token_; }
  bool is_bracket() const { return token_.size() > 1; }
  bool failed() const { return failed_; }
  std::string_view rest() const { return rest_; }

 private:
  void take(std::size_t size) {
    token_ = rest_.substr(0, size);
    rest_.remove_prefix(size);
  }
  bool take_through(char end) {
    const std::size_t found = rest_.find(end, 1);
    failed_ = found == std::string_view::npos;
    if (!failed_) take(found + 1);
    return !failed_;
  }

  std::string_view rest_;
  std::string_view token_;
  bool failed_ = false;
};

// A condition for the value, as [>=100].
struct Condition {
  bool less = false;
  bool equal = false;
  bool greater = false;
  double limit = 0;

  bool holds(double value) const { return value < limit ? less : value > limit ? greater : equal; }
};

std::optional<Condition> condition_of(std::string_view bracket) {
  std::string_view inside = bracket.substr(1, bracket.size() - 2);
  Condition made;
  while (!inside.empty()) {
    if (inside.front() == '<') made.less = true;
    else if (inside.front() == '>') made.greater = true;
    else if (inside.front() == '=') made.equal = true;
    else break;
    inside.remove_prefix(1);
  }
  if (!made.less && !made.equal && !made.greater) return std::nullopt;
  const char* end = inside.data() + inside.size();
  if (std::from_chars(inside.data(), end, made.limit).ec != std::errc()) return std::nullopt;
  return made;
}

// [h], [mm], [sss]: elapsed time.
bool is_elapsed(std::string_view bracket) {
  const std::string_view inside = bracket.substr(1, bracket.size() - 2);
  const char letter = inside.empty() ? '\0' : lower(inside.front());
  if (letter != 'h' && letter != 'm' && letter != 's') return false;
  return std::ranges::all_of(inside, [letter](char other) { return lower(other) == letter; });
}

bool is_date_letter(char letter) {
  return std::string_view("ymdhs").find(lower(letter)) != std::string_view::npos;
}

struct Section {
  bool is_date = false;
  bool is_text = false;  // shows texts: holds @
  std::optional<Condition> condition;
};

struct Sections {
  std::array<Section, kMaxSections> list;
  std::size_t count = 1;

  // How many of them show numbers.
  std::size_t numeric() const {
    const std::size_t most = count == kMaxSections ? kMaxSections - 1 : count;
    return most > 1 && list[most - 1].is_text ? most - 1 : most;
  }
  const Section& for_value(double value) const;
};

Sections sections_of(std::string_view code) {
  Sections made;
  Instructions instructions(code);
  Section* section = made.list.data();
  while (instructions.next()) {
    const std::string_view token = instructions.token();
    if (token == ";") {
      if (made.count == kMaxSections) break;
      section = &made.list[made.count++];
    } else if (token == "@") {
      section->is_text = true;
    } else if (instructions.is_bracket()) {
      section->is_date |= is_elapsed(token);
      if (!section->condition) section->condition = condition_of(token);
    } else {
      section->is_date |=
          is_date_letter(token.front()) ||
          (equal_lower(token, "a") && equal_lower(instructions.rest().substr(0, 2), "/p"));
    }
  }
  return made;
}

const Section& Sections::for_value(double value) const {
  const std::size_t sections = numeric();
  for (std::size_t at = 0; at < sections; ++at) {
    const Section& section = list[at];
    bool shows = at + 1 == sections;  // the last one shows what is left
    if (section.condition) shows = section.condition->holds(value);
    else if (!shows) shows = at == 1 ? value < 0 : value > 0 || (value == 0 && sections == 2);
    if (shows) return section;
  }
  return list[0];
}

}  // namespace

std::string_view built_in_number_format(std::uint32_t id) {
  for (const auto& [known, code] : kBuiltIn)
    if (known == id) return code;
  return {};
}

bool is_built_in_date(std::uint32_t id) {
  return (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47) ||
         (id >= 50 && id <= 58);
}

bool is_valid_number_format(std::string_view code) {
  std::size_t sections = 1;
  Instructions instructions(code);
  while (instructions.next()) {
    if (instructions.token() == "]") return false;
    sections += instructions.token() == ";" ? 1 : 0;
  }
  return !instructions.failed() && sections <= kMaxSections;
}

bool is_date_format(std::string_view code, std::optional<double> value) {
  const Sections sections = sections_of(code);
  return (value ? sections.for_value(*value) : sections.list[0]).is_date;
}

bool is_date_by_value(std::string_view code) {
  const Sections sections = sections_of(code);
  for (std::size_t at = 1; at < sections.numeric(); ++at)
    if (sections.list[at].is_date != sections.list[0].is_date) return true;
  return false;
}

}  // namespace engine
