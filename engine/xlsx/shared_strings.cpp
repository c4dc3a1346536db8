#include "engine/xlsx/shared_strings.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "engine/package/xml_scanner.h"
#include "engine/package/xml_text.h"
#include "engine/text/utf8.h"
#include "engine/xlsx/sheet_part.h"
#include "engine/xlsx/string_item.h"

namespace engine::xlsx {

namespace {

using package::XmlScanner;

// Long, as each slice is packed for itself: with half of it a part of long texts is 1.5% larger.
// Twice of it leaves one of two threads without work at the end of a middling part.
constexpr std::size_t kSliceSize = std::size_t{1} << 19;
constexpr std::size_t kItemSize = 20;  // around a text, about
constexpr std::string_view kNamespace = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

// Takes plain texts, <si><t>text</t></si>, as long as they stand there just so.
void read_plain_items(XmlScanner& scanner, StringPool& pool) {
  constexpr std::string_view kOpen = "<si><t>";
  constexpr std::string_view kClose = "</t></si>";
  const std::string_view ahead = scanner.ahead();
  std::size_t taken = 0;
  for (std::string_view rest = ahead; rest.starts_with(kOpen); rest = ahead.substr(taken)) {
    rest.remove_prefix(kOpen.size());
    const package::RawText found = package::find_text_end(rest);
    if (found.special || found.size == std::string_view::npos) break;
    const std::string_view text = rest.substr(0, found.size);
    if (found.underscore && text.find("_x") != std::string_view::npos) break;
    if (found.beyond_ascii && !is_utf8(text)) break;
    if (!rest.substr(found.size).starts_with(kClose)) break;
    pool.append(text);
    taken = static_cast<std::size_t>(text.data() - ahead.data()) + text.size() + kClose.size();
  }
  scanner.consume(taken);
}

// A start tag with other values for two of its attributes, and open where it closed itself.
std::string patched_tag(std::string_view tag, std::uint64_t count, std::uint64_t unique) {
  const std::size_t name_end = tag.find_first_of(" \t\r\n/>");
  std::string patched(tag.substr(0, name_end));
  const std::string_view raw = tag.substr(name_end, tag.find_last_not_of("/>") + 1 - name_end);
  package::XmlAttributes attributes(raw);
  for (package::XmlAttribute one; attributes.next(one);) {
    if (one.name == "count" || one.name == "uniqueCount") continue;
    // The value may hold quotes of the other kind than surrounded it.
    const char quote = one.value.find('"') == std::string_view::npos ? '"' : '\'';
    patched.append(" ").append(one.name).append("=").append(1, quote).append(one.value);
    patched.push_back(quote);
  }
  patched.append(" count=\"").append(std::to_string(count));
  patched.append("\" uniqueCount=\"").append(std::to_string(unique)).append("\">");
  return patched;
}

// The present part, cut where its texts end.
struct Halves {
  std::string head;
  std::string tail;
  std::string item_open = "<si>";  // of a text that is put in between
};

Halves new_halves(std::uint64_t count, std::uint64_t unique) {
  Halves halves;
  halves.head.append("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n");
  const std::string tag = std::string("<sst xmlns=\"").append(kNamespace).append("\">");
  halves.head.append(patched_tag(tag, count, unique));
  halves.tail = "</sst>";
  return halves;
}

Halves cut(std::string stored, std::string_view part, std::uint64_t count, std::uint64_t unique) {
  package::declare_utf8(stored);
  package::MemoryReader reader(stored);
  XmlScanner scanner(reader, part);
  scanner.next();
  const auto begin = static_cast<std::size_t>(scanner.offset());
  const std::string tag(scanner.root_tag());
  const std::string name(scanner.qualified_name());
  const std::string prefix(name.substr(0, name.size() - package::local_name(name).size()));
  Halves halves;
  const std::string patched = patched_tag(tag, count, unique);
  if (scanner.self_closing()) {
    halves.head = stored.substr(0, begin) + patched;
    halves.tail = "</" + name + ">" + stored.substr(begin + tag.size());
  } else {
    const std::size_t extensions = stored.rfind("<" + prefix + "extLst");
    const std::size_t end =
        extensions != std::string::npos ? extensions : stored.rfind("</" + name);
    halves.tail = stored.substr(end);
    stored.resize(end);
    stored.replace(begin, tag.size(), patched);
    halves.head = std::move(stored);
  }
  if (!prefix.empty()) {
    const std::string declaration = "xmlns:" + prefix.substr(0, prefix.size() - 1);
    const package::XmlAttributes attributes(
        std::string_view(tag).substr(tag.find_first_of(" \t\r\n")));
    halves.item_open = "<si xmlns=\"" + std::string(attributes.find(declaration)) + "\">";
  }
  return halves;
}

void append_item(std::string& out, const StringPool& pool, std::uint32_t index,
                 std::string_view open) {
  constexpr std::string_view kPlainOpen = "<si>";
  const std::size_t begin = out.size();
  if (const std::string* rich = pool.rich(index)) out.append("<si>").append(*rich).append("</si>");
  else append_string_item(out, pool[index]);
  if (open != kPlainOpen) out.replace(begin, kPlainOpen.size(), open);
}

// Runs of texts that are about a slice long; one that is empty when there are no texts.
std::vector<std::span<const std::uint32_t>> groups_of(const StringPool& pool,
                                                      std::span<const std::uint32_t> texts) {
  std::vector<std::span<const std::uint32_t>> groups;
  std::size_t first = 0;
  std::size_t size = 0;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (size >= kSliceSize) {
      groups.push_back(texts.subspan(first, i - first));
      first = i;
      size = 0;
    }
    size += pool[texts[i]].size() + kItemSize;
  }
  groups.push_back(texts.subspan(first));
  return groups;
}

}  // namespace

std::uint64_t read_shared_strings(package::BlockReader& reader, std::string_view part,
                                  StringPool& pool) {
  XmlScanner scanner(reader, part);
  if (scanner.next() != XmlScanner::Token::Start || scanner.name() != "sst")
    scanner.fail("not a list of texts");
  const auto number_of = [&](std::string_view name) {
    std::uint64_t number = 0;
    const std::string_view raw = scanner.attributes().find(name);
    std::from_chars(raw.data(), raw.data() + raw.size(), number);
    return number;
  };
  const std::uint64_t count = number_of("count");
  const bool prefixed = scanner.qualified_name() != scanner.name();
  StringItem item;
  if (!prefixed) read_plain_items(scanner, pool);
  while (scanner.next() != XmlScanner::Token::Finish) {
    if (scanner.token() != XmlScanner::Token::Start) continue;
    if (scanner.name() != "si") {
      scanner.skip_element();
      continue;
    }
    if (scanner.self_closing()) item = {};
    else read_string_item(scanner, item);
    const std::uint32_t index = pool.append(item.text);
    if (item.rich) pool.mark_rich(index);
    if (scanner.self_closing()) scanner.next();
    if (!prefixed) read_plain_items(scanner, pool);
  }
  pool.end_of_file_entries();
  return count;
}

void WrittenTexts::enter(const SheetContents& sheet) {
  const auto note = [&](std::uint64_t index) {
    ++cells_;
    if (index >= from_file_) numbers_[index - from_file_] = 1;
  };
  for (const Row& row : sheet.cells.rows()) {
    for (const Cell& cell : row.span()) {
      if (cell.kind == CellKind::kText) note(cell.bits);
      // Without a formula a cell has a record for what else the file says of it.
      if (cell.kind != CellKind::kRecord || !sheet.has_extras()) continue;
      const CellRecord& record = *sheet.record(cell);
      if (record.value.kind == ValueKind::kText && !has_formula_element(sheet, record))
        note(record.value.bits);
    }
  }
}

void WrittenTexts::settle() {
  std::uint32_t next = from_file_;
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    if (numbers_[i] == 0) continue;
    numbers_[i] = next++;
    added_.push_back(from_file_ + static_cast<std::uint32_t>(i));
  }
}

PartBlocks write_shared_strings(std::string stored, std::string_view part, const StringPool& pool,
                                const WrittenTexts& texts, std::uint64_t count) {
  const std::uint64_t unique = pool.count_from_file() + texts.added().size();
  auto halves = std::make_shared<const Halves>(
      stored.empty() ? new_halves(count, unique) : cut(std::move(stored), part, count, unique));
  // What is left of the head behind its whole slices goes with the first texts, and the tail with
  // the last: a small table is one block.
  const std::size_t slices = halves->head.size() / kSliceSize;
  std::vector<std::span<const std::uint32_t>> groups = groups_of(pool, texts.added());
  PartBlocks blocks;
  blocks.count = slices + groups.size();
  blocks.make = [halves, slices, groups = std::move(groups), &pool](std::size_t block,
                                                                    std::string& out) {
    if (block < slices) {
      out.append(halves->head, block * kSliceSize, kSliceSize);
      return;
    }
    if (block == slices) out.append(halves->head, slices * kSliceSize);
    for (const std::uint32_t text : groups[block - slices])
      append_item(out, pool, text, halves->item_open);
    if (block - slices + 1 == groups.size()) out.append(halves->tail);
  };
  return blocks;
}

}  // namespace engine::xlsx
