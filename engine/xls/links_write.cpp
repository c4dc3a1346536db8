#include "engine/xls/links_write.h"

#include <string>

#include "engine/text/utf16.h"
#include "engine/text/utf8.h"

namespace engine::xls {

namespace {

// Class identifiers, as bytes.
constexpr std::string_view kLinkClass{
    "\xD0\xC9\xEA\x79\xF9\xBA\xCE\x11\x8C\x82\x00\xAA\x00\x4B\xA9\x0B", 16};
constexpr std::string_view kUrlClass{
    "\xE0\xC9\xEA\x79\xF9\xBA\xCE\x11\x8C\x82\x00\xAA\x00\x4B\xA9\x0B", 16};
constexpr std::string_view kFileClass{
    "\x03\x03\x00\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46", 16};

enum Flags : std::uint32_t { kHasTarget = 1, kIsAbsolute = 2, kHasLocation = 8 };

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

void write_link(RecordWriter& out, const Link& link) {
  constexpr std::uint32_t kVersion = 2;
  const auto [kind, target, location] = link_target(link.text);
  std::uint32_t flags = kind == LinkKind::kPlace ? 0U : kHasTarget;
  if (kind == LinkKind::kUrl || (kind == LinkKind::kPath && is_absolute_path(target)))
    flags |= kIsAbsolute;
  if (!location.empty()) flags |= kHasLocation;
  out.begin(kLink);
  put_range(out, link.cells);
  out.put(kLinkClass);
  out.put32(kVersion);
  out.put32(flags);
  if (kind == LinkKind::kUrl) {
    const std::string units = utf16_bytes(target);
    out.put(kUrlClass);
    out.put32(static_cast<std::uint32_t>(units.size() + 2));
    out.put(units);
    out.put16(0);
  } else if (kind == LinkKind::kPath) {
    put_path(out, target);
  }
  if (!location.empty()) {
    const std::string units = utf16_bytes(location);
    out.put32(static_cast<std::uint32_t>(units.size() / 2 + 1));
    out.put(units);
    out.put16(0);
  }
  out.end();
}

}  // namespace

void put_range(RecordWriter& out, const CellRange& range) {
  for (const int place : {range.row_first, range.row_last, range.column_first, range.column_last})
    out.put16(static_cast<std::uint32_t>(place));
}

void write_links(RecordWriter& out, const Links& links) {
  for (std::size_t i = 0; i < links.size(); ++i) write_link(out, links[i]);
}

}  // namespace engine::xls
