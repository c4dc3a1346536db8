#include "engine/workbook/number_sections.h"

#include <algorithm>
#include <charconv>

#include "engine/text/fold.h"

namespace engine {

namespace {

bool equal_lower(std::string_view text, std::string_view lower_case) {
  return std::ranges::equal(text, lower_case, {}, [](char c) { return lower_ascii(c); });
}

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

bool is_date_letter(char letter) {
  return std::string_view("ymdhs").find(lower_ascii(letter)) != std::string_view::npos;
}

}  // namespace

bool is_elapsed(std::string_view bracket) {
  const std::string_view inside = bracket.substr(1, bracket.size() - 2);
  const char letter = inside.empty() ? '\0' : lower_ascii(inside.front());
  if (letter != 'h' && letter != 'm' && letter != 's') return false;
  return std::ranges::all_of(inside, [letter](char other) { return lower_ascii(other) == letter; });
}

Sections sections_of(std::string_view code) {
  Sections made;
  Instructions instructions(code);
  Section* section = made.list.data();
  section->code = code;
  while (instructions.next()) {
    const std::string_view token = instructions.token();
    if (token == ";") {
      if (made.count == kMaxSections) break;
      const std::size_t end = code.size() - instructions.rest().size();
      section->code.remove_suffix(code.size() - end + 1);
      section = &made.list[made.count++];
      section->code = code.substr(end);
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

}  // namespace engine
