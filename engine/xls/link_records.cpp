// Hyperlinks: a range, then what the link consists of, which flags tell.
#include "engine/xls/link_records.h"

#include "engine/xls/sheet_records.h"

namespace engine::xls {

namespace {

// Kinds of targets, by the first bytes of their class.
constexpr std::uint32_t kUrlClass = 0x79EAC9E0;
constexpr std::uint32_t kFileClass = 0x00000303;

constexpr std::size_t kMaxPath = 2079;

// Wide characters up to the zero that ends them.
std::string text_of(std::string_view bytes) {
  std::string text;
  append_utf16(text, bytes);
  return text.substr(0, text.find('\0'));
}

std::string take_text(Fields& in) {
  const std::uint32_t count = in.take32();
  return text_of(in.take(2 * std::size_t{count}));
}

// A path has its narrow form first, and its wide one where that cannot say it.
std::string take_path(Fields& in) {
  std::string path;
  for (std::size_t up = in.take16(); up > 0 && path.size() < kMaxPath; --up) path += "..\\";
  std::string narrow;
  const std::uint32_t length = in.take32();
  append_latin1(narrow, in.take(length));
  in.skip(24);
  if (in.take32() == 0) return path + narrow.substr(0, narrow.find('\0'));
  const std::uint32_t wide = in.take32();
  in.skip(2);
  return path + text_of(in.take(wide));
}

std::string take_target(Fields& in) {
  const std::uint32_t kind = in.take32();
  in.skip(12);
  if (kind == kFileClass) return take_path(in);
  const std::uint32_t length = in.take32();
  return kind == kUrlClass ? text_of(in.take(length)) : std::string();
}

}  // namespace

LinkRecord take_link(Fields& in) {
  LinkRecord made;
  in.skip(20);
  const std::uint32_t flags = in.take32();
  if ((flags & kHasDisplayText) != 0) made.display = take_text(in);
  if ((flags & kHasFrame) != 0) made.frame = take_text(in);
  if ((flags & kHasTarget) != 0)
    made.text = (flags & kTargetIsText) != 0 ? take_text(in) : take_target(in);
  if ((flags & kHasLocation) != 0) {
    const std::string location = take_text(in);
    made.text.append("#").append(location);
  }
  return made;
}

void read_link(Fields& in, SheetReading& to) {
  const auto cells = take_range(in, to.context.workbook.limits.grid);
  if (!cells) return;
  LinkRecord record = take_link(in);
  if (!in.ok()) return;
  to.sheet.links.add({*cells, std::move(record.text), static_cast<std::uint32_t>(to.record)});
}

}  // namespace engine::xls
