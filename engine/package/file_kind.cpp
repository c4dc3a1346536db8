#include "engine/package/file_kind.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "engine/text/fold.h"

namespace engine::package {
namespace {

constexpr std::size_t kLooked = 1024;

struct Magic {
  std::string_view bytes;
  FileKind kind;
};

// An archive begins with an entry, or with its end when it has none. A bare workbook stream begins
// with a BOF record: identifier, length, version.
constexpr Magic kMagics[] = {
    {{"PK\x03\x04", 4}, FileKind::Zip},
    {{"PK\x05\x06", 4}, FileKind::Zip},
    {{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8}, FileKind::CompoundFile},
    {{"\x09\x00\x04\x00", 4}, FileKind::Excel2},
    {{"\x09\x00\x06\x00", 4}, FileKind::Excel2},
    {{"\x09\x02\x06\x00", 4}, FileKind::Excel3},
    {{"\x09\x04\x06\x00", 4}, FileKind::Excel4},
    {{"\x09\x08\x08\x00", 4}, FileKind::BareStream},
    {{"\x09\x08\x10\x00", 4}, FileKind::BareStream},
};

constexpr std::string_view kHtmlBeginnings[] = {"<!doctype html", "<html", "<head",
                                                "<body",          "<meta", "<table"};

// The beginning as lower case text without byte order mark, zero bytes (of UTF-16) and blanks.
std::string as_text(std::string_view bytes) {
  std::string text;
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) bytes.remove_prefix(2);
  for (const char c : bytes) {
    const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
    if (c == '\0' || (blank && text.empty())) continue;
    text += lower_ascii(c);
  }
  return text;
}

FileKind text_kind(std::string_view text) {
  const auto begins = [text](std::string_view beginning) { return text.starts_with(beginning); };
  if (std::any_of(std::begin(kHtmlBeginnings), std::end(kHtmlBeginnings), begins)) {
    return FileKind::Html;
  }
  if (!begins("<?xml")) return FileKind::Other;
  return text.find("<html") == std::string_view::npos ? FileKind::Xml : FileKind::Html;
}

}  // namespace

FileKind file_kind(const Source& source) {
  if (source.size() == 0) return FileKind::Empty;
  std::array<char, kLooked> buffer{};
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(source.size(), kLooked));
  source.read(0, {buffer.data(), size});
  const std::string_view bytes(buffer.data(), size);
  for (const auto& [magic, kind] : kMagics) {
    if (bytes.starts_with(magic)) return kind;
  }
  return text_kind(as_text(bytes));
}

}  // namespace engine::package
