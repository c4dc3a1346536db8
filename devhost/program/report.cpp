#include "devhost/program/report.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <utility>

#include "devhost/calc/script.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/columns.h"
#include "devhost/program/system.h"

namespace devhost {
namespace {

// What is shown of a longer line before and behind the place.
constexpr std::size_t kShownAround = 60;

constexpr std::string_view kMargin = "    ";

std::u16string_view line_of(std::u16string_view text, int number) {
  for (; number > 1; --number) {
    const std::size_t end = text.find_first_of(u"\r\n");
    if (end == std::u16string_view::npos) return {};
    text.remove_prefix(text.substr(end).starts_with(u"\r\n") ? end + 2 : end + 1);
  }
  return text.substr(0, text.find_first_of(u"\r\n"));
}

// The units in front of a column.
std::size_t offset_of(std::u16string_view line, int column) {
  std::size_t offset = 0;
  for (; column > 1 && offset < line.size(); --column) {
    offset += character_length(line.substr(offset));
  }
  return offset;
}

std::string description(const Failure& failure) {
  std::string text = utf8_from_utf16(failure.function) + " failed";
  if (failure.code != 0) text += " with code " + std::to_string(failure.code);
  if (!failure.message.empty()) text += ": " + utf8_from_utf16(on_one_line(failure.message));
  return text;
}

}  // namespace

Report::Report(Style style, bool strict) : strict_(strict) {
  if (style != Style::kJson) return;
  json_.emplace(std::cout);
  json_->open_object();
  json_->key("results");
  json_->open_list();
}

void Report::source(std::u16string text, std::string file, int first_line) {
  source_ = std::move(text);
  file_ = std::move(file);
  first_line_ = first_line;
}

void Report::result(const Value& value, Position position) {
  if (!json_) {
    std::cout << printed(is_terminal(Channel::kOutput) ? Value(harmless(value.units())) : value)
              << std::flush;
    return;
  }
  json_->open_object();
  json_->member("line", position.line);
  json_->key("value");
  if (value.is_number()) json_->number(value.number().value);
  else json_->text(value.units());
  json_->close();
}

void Report::failure(const Failure& failure) {
  if (json_) failures_.push_back(failure);
  else tell(failure.position, description(failure));
  if (strict_) throw StrictEnd();
}

void Report::error(const SyntaxError& error) {
  if (json_) error_ = {error.what(), error.position()};
  else tell(error.position(), error.what());
}

void Report::error(const std::string& problem) {
  std::cout.flush();
  if (json_) error_ = {problem, std::nullopt};
  else std::cerr << "xlcalc: " << problem << '\n';
}

// Below the problem the line, and below that a mark at the place.
void Report::tell(Position position, const std::string& problem) const {
  std::cout.flush();
  std::cerr << "xlcalc: " << file_ << (file_.empty() ? "" : ", ") << "line " << position.line
            << ", column " << position.column << ": " << problem << '\n';
  const std::u16string_view line = line_of(source_, position.line - first_line_ + 1);
  if (line.empty()) return;
  const std::size_t offset = offset_of(line, position.column);
  const std::size_t start = offset > kShownAround ? offset - kShownAround : 0;
  const std::u16string before = on_one_line(line.substr(start, offset - start));
  const std::u16string after = on_one_line(line.substr(offset, kShownAround));
  const auto columns = static_cast<std::size_t>(columns_of(before));
  std::cerr << kMargin << utf8_from_utf16(before + after) << '\n'
            << kMargin << std::string(columns, ' ') << "^\n";
}

void Report::write_place(const std::optional<Position>& position) {
  if (!position) return;
  json_->member("line", position->line);
  json_->member("column", position->column);
}

void Report::finish() {
  if (!json_) return;
  json_->close_to(1);
  json_->key("failures");
  json_->open_list();
  for (const Failure& failure : failures_) {
    json_->open_object();
    write_place(failure.position);
    json_->member("function", failure.function);
    json_->member("code", failure.code);
    json_->member("message", failure.message);
    json_->close();
  }
  json_->close();
  json_->key("error");
  if (error_) {
    json_->open_object();
    write_place(error_->position);
    json_->member("message", utf16_from_utf8(error_->message));
    json_->close();
  } else {
    json_->null();
  }
  json_->close();
  std::cout.flush();
}

}  // namespace devhost
