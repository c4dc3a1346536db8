// The scanner: tokens must not depend on where blocks end. The first byte chooses their size.
#include <cstdlib>
#include <string>

#include "engine/package/xml_scanner.h"
#include "tests/fuzz/package_entry.h"

using namespace engine::package;  // NOLINT(google-build-using-namespace): a target of one file

namespace {

using Token = XmlScanner::Token;

void append_token(const XmlScanner& scanner, std::string& out) {
  std::string scratch;
  out += static_cast<char>('0' + static_cast<int>(scanner.token()));
  if (scanner.token() == Token::Text) out += scanner.text(scratch);
  if (scanner.token() != Token::Text) out += scanner.name();
  if (scanner.token() != Token::Start) return;
  auto attributes = scanner.attributes();
  for (XmlAttribute attribute; attributes.next(attribute);) {
    out.append(attribute.name).append(scanner.value(attribute.value, scratch));
  }
}

// Some elements are kept or skipped, so that these ways are walked as well.
std::string tokens_of(std::string_view xml, std::size_t block_size) {
  std::string out;
  try {
    MemoryReader reader(xml, block_size);
    XmlScanner scanner(reader, "part");
    while (scanner.next() != Token::Finish) {
      append_token(scanner, out);
      if (scanner.token() != Token::Start) continue;
      if (scanner.name() == "k") scanner.append_element(out);
      if (scanner.name() == "s") scanner.skip_element();
      if (scanner.name() == "t") scanner.append_text(out);
      scanner.root_family("r");
    }
  } catch (const FileError& error) {
    out += error.what();
  }
  return out;
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  if (bytes.empty()) return;
  const auto block_size = static_cast<std::size_t>(static_cast<unsigned char>(bytes[0])) + 1;
  const auto xml = bytes.substr(1);
  if (tokens_of(xml, block_size) != tokens_of(xml, xml.size() + 1)) std::abort();
}
