#include "engine/xls/links_write.h"

#include <optional>
#include <string>

#include "engine/text/utf16.h"
#include "engine/text/utf8.h"
#include "engine/xls/link_records.h"
#include "engine/xls/loaded_file.h"

namespace engine::xls {

namespace {

// Class identifiers, as bytes.
constexpr std::string_view kLinkClass{
    "\xD0\xC9\xEA\x79\xF9\xBA\xCE\x11\x8C\x82\x00\xAA\x00\x4B\xA9\x0B", 16};
constexpr std::string_view kUrlClass{
    "\xE0\xC9\xEA\x79\xF9\xBA\xCE\x11\x8C\x82\x00\xAA\x00\x4B\xA9\x0B", 16};
constexpr std::string_view kFileClass{
    "\x03\x03\x00\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46", 16};

bool is_absolute_path(std::string_view path) {
  return path.starts_with("\\\\") || path.starts_with('/') || path.substr(1, 1) == ":";
}

// Steps into the folder above that a path begins with, which are taken off.
std::uint32_t take_steps_up(std::string_view& path) {
  std::uint32_t count = 0;
  while (path.starts_with("..\\") || path.starts_with("../")) {
    path.remove_prefix(3);
    ++count;
  }
  return count;
}

// In the characters of an old system, which are ASCII here.
std::string plain_path(std::string_view path) {
  std::string plain;
  while (!path.empty()) {
    const std::uint32_t code = take_character(path);
    plain += code < 0x80 ? static_cast<char>(code) : '?';
  }
  return plain;
}

void put_path(RecordWriter& out, std::string_view path) {
  constexpr std::uint32_t kNoServer = 0xFFFF;
  constexpr std::uint32_t kVersion = 0xDEAD;
  constexpr std::uint32_t kKind = 3;
  out.put(kFileClass);
  out.put16(take_steps_up(path));
  const std::string plain = plain_path(path);
  out.put32(static_cast<std::uint32_t>(plain.size() + 1));
  out.put(plain);
  out.put8(0);
  // Of a path in a network, how much of it names the server and what that shares.
  std::size_t server = std::string_view::npos;
  if (path.starts_with("\\\\")) server = path.find('\\', path.find('\\', 2) + 1);
  out.put16(server == std::string_view::npos
                ? kNoServer
                : static_cast<std::uint32_t>(utf16_length(path.substr(0, server))));
  out.put16(kVersion);
  out.put_zeros(20);
  const std::string units = utf16_bytes(path);
  out.put32(static_cast<std::uint32_t>(units.size() + 6));
  out.put32(static_cast<std::uint32_t>(units.size()));
  out.put16(kKind);
  out.put(units);
}

void put_text(RecordWriter& out, std::string_view text) {
  const std::string units = utf16_bytes(text);
  out.put32(static_cast<std::uint32_t>(units.size() / 2 + 1));
  out.put(units);
  out.put16(0);
}

void write_link(RecordWriter& out, const Link& link, const LinkRecord& known) {
  constexpr std::uint32_t kVersion = 2;
  const auto [kind, target, location] = link_target(link.text);
  std::uint32_t flags = kind == LinkKind::kPlace ? 0U : kHasTarget;
  if (kind == LinkKind::kUrl || (kind == LinkKind::kPath && is_absolute_path(target)))
    flags |= kIsAbsolute;
  if (!location.empty()) flags |= kHasLocation;
  if (!known.display.empty()) flags |= kGivenDisplayText | kHasDisplayText;
  if (!known.frame.empty()) flags |= kHasFrame;
  out.begin(kLink);
  put_range(out, link.cells);
  out.put(kLinkClass);
  out.put32(kVersion);
  out.put32(flags);
  if (!known.display.empty()) put_text(out, known.display);
  if (!known.frame.empty()) put_text(out, known.frame);
  if (kind == LinkKind::kUrl) {
    const std::string units = utf16_bytes(target);
    out.put(kUrlClass);
    out.put32(static_cast<std::uint32_t>(units.size() + 2));
    out.put(units);
    out.put16(0);
  } else if (kind == LinkKind::kPath) {
    put_path(out, target);
  }
  if (!location.empty()) put_text(out, location);
  out.end();
}

// A record of the file that begins with cells, which are others now.
void write_moved(RecordWriter& out, std::uint16_t id, std::string_view data, std::size_t range_at,
                 const CellRange& cells) {
  constexpr std::size_t kRange = 8;
  out.begin(id);
  out.put(data.substr(0, range_at));
  put_range(out, cells);
  out.put(data.substr(range_at + kRange));
  out.end();
}

// `reader` goes over the stream that the link comes from.
void write_known_link(RecordWriter& out, const Link& link, RecordReader& reader) {
  constexpr std::size_t kTipRange = 2;
  constexpr std::size_t kTipHead = 10;
  reader.go_to(link.details);
  if (!reader.next()) return write_link(out, link, {});
  const std::string_view data = reader.whole_data();
  Fields in(data.substr(8));
  const LinkRecord known = take_link(in);
  if (known.text == link.text) write_moved(out, kLink, data, 0, link.cells);
  else write_link(out, link, known);
  if (reader.next_id() == kLinkTip && reader.next() && reader.data().size() >= kTipHead)
    write_moved(out, kLinkTip, reader.data(), kTipRange, link.cells);
}

}  // namespace

void write_links(RecordWriter& out, const Links& links, const LoadedFile* file) {
  std::optional<RecordReader> reader;
  if (file) reader.emplace(file->stream, 0, file->globals.cipher);
  for (std::size_t i = 0; i < links.size(); ++i) {
    if (reader && links[i].details != 0) write_known_link(out, links[i], *reader);
    else write_link(out, links[i], {});
  }
}

}  // namespace engine::xls
