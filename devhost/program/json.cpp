#include "devhost/program/json.h"

#include <array>
#include <charconv>
#include <cmath>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

// The outer object and its lists have a line for each thing that they hold.
bool parts_lines(const std::string& open) {
  return open.size() == 1 || (open.size() == 2 && open.back() == ']');
}

std::string line_start(const std::string& open) { return '\n' + std::string(2 * open.size(), ' '); }

constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string quoted(std::u16string_view value) {
  std::string out = "\"";
  for (const char byte : utf8_from_utf16(value)) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\') {
      out += {'\\', byte};
    } else if (byte == '\n') {
      out += "\\n";
    } else if (byte == '\r') {
      out += "\\r";
    } else if (byte == '\t') {
      out += "\\t";
    } else if (code < 0x20 || code == 0x7F) {
      out += "\\u00";
      out += {kHexDigits[code >> 4U], kHexDigits[code & 0xFU]};
    } else {
      out += byte;
    }
  }
  return out + '"';
}

}  // namespace

void JsonWriter::begin_value() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (!first_) out_ << ',';
  if (parts_lines(closing_)) {
    out_ << line_start(closing_);
  } else if (!first_) {
    out_ << ' ';
  }
}

void JsonWriter::open(char bracket) {
  begin_value();
  out_ << bracket;
  closing_ += bracket == '{' ? '}' : ']';
  first_ = true;
}

void JsonWriter::close() {
  const char bracket = closing_.back();
  const bool on_its_line = !first_ && parts_lines(closing_);
  closing_.pop_back();
  if (on_its_line) out_ << line_start(closing_);
  out_ << bracket;
  if (closing_.empty()) out_ << '\n';
  first_ = false;
}

void JsonWriter::close_to(std::size_t depth) {
  while (closing_.size() > depth) close();
}

void JsonWriter::key(std::string_view name) {
  begin_value();
  out_ << '"' << name << "\": ";
  after_key_ = true;
  first_ = false;
}

void JsonWriter::member(std::string_view name, std::u16string_view value) {
  key(name);
  text(value);
}

void JsonWriter::member(std::string_view name, double value) {
  key(name);
  number(value);
}

void JsonWriter::text(std::u16string_view value) {
  begin_value();
  out_ << quoted(value);
  first_ = false;
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value)) return null();
  begin_value();
  std::array<char, 32> digits = {};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  out_ << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
  first_ = false;
}

void JsonWriter::boolean(bool value) {
  begin_value();
  out_ << (value ? "true" : "false");
  first_ = false;
}

void JsonWriter::null() {
  begin_value();
  out_ << "null";
  first_ = false;
}

}  // namespace devhost
