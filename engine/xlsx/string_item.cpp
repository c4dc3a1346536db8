#include "engine/xlsx/string_item.h"

#include "engine/package/block_reader.h"
#include "engine/package/xml_text.h"
#include "engine/xlsx/escapes.h"

namespace engine::xlsx {

namespace {

using package::XmlScanner;

void append_unescaped(XmlScanner& scanner, std::string& out) {
  std::string text;
  scanner.append_text(text);
  if (text.find("_x") == std::string::npos) out.append(text);
  else out.append(unescape(text));
}

// At the Start of a run.
void read_run(XmlScanner& scanner, std::string& text) {
  while (scanner.next() != XmlScanner::Token::End) {
    if (scanner.token() != XmlScanner::Token::Start) continue;
    if (scanner.name() == "t") append_unescaped(scanner, text);
    else scanner.skip_element();
  }
}

void erase_all(std::string& text, std::string_view what, std::size_t kept) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at))
    text.erase(at + kept, what.size() - kept);
}

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

bool has_outer_blank(std::string_view text) {
  return !text.empty() && (is_blank(text.front()) || is_blank(text.back()));
}

void read_string_item(XmlScanner& scanner, StringItem& item) {
  item.text.clear();
  item.rich = false;
  while (scanner.next() != XmlScanner::Token::End) {
    if (scanner.token() != XmlScanner::Token::Start) continue;
    if (scanner.name() == "t") {
      append_unescaped(scanner, item.text);
      continue;
    }
    item.rich = true;
    if (scanner.name() == "r") read_run(scanner, item.text);
    else scanner.skip_element();
  }
}

StringItem parse_string_item(std::string_view element, std::string_view part,
                             std::string& content) {
  package::MemoryReader reader(element);
  XmlScanner scanner(reader, part);
  scanner.next();
  const std::size_t open = scanner.raw().size();
  const std::string name(scanner.qualified_name());
  StringItem item;
  if (scanner.self_closing()) return item;
  read_string_item(scanner, item);
  content = element.substr(open, element.rfind("</") - open);
  if (const auto prefix = package::prefix_of(name); !prefix.empty()) {
    erase_all(content, std::string("<").append(prefix).append(":"), 1);
    erase_all(content, std::string("</").append(prefix).append(":"), 2);
  }
  return item;
}

void append_string_item(std::string& out, std::string_view text) {
  const bool plain = is_plain_text(text);
  const bool preserve =
      has_outer_blank(text) || (!plain && text.find('\n') != std::string_view::npos);
  out.append(preserve ? "<si><t xml:space=\"preserve\">" : "<si><t>");
  if (plain) out.append(text);
  else append_text(out, text);
  out.append("</t></si>");
}

}  // namespace engine::xlsx
