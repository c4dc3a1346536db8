#include "engine/xls/link_writer.h"

#include "engine/package/output.h"
#include "engine/text/fold.h"

namespace engine::xls {

namespace {

constexpr std::size_t kMaxEntries = 0xFFFF;

}  // namespace

LinkWriter::LinkWriter(const Workbook& book) : book_(book) {
  for (const DefinedName& name : book.names)
    names_.try_emplace({name.scope, fold_case(name.name)}, ++last_name_);
  for (const auto& sheet : book.sheets())
    positions_.emplace(sheet.get(), static_cast<int>(positions_.size()));
}

std::uint16_t LinkWriter::entry(Book book, int first, int last) {
  const Entry wanted{book, first, last};
  const auto [found, is_new] =
      numbers_.try_emplace(wanted, static_cast<std::uint16_t>(entries_.size()));
  if (!is_new) return found->second;
  if (entries_.size() >= kMaxEntries) throw package::LimitError("sheet references", kMaxEntries);
  entries_.push_back(wanted);
  return found->second;
}

std::optional<std::uint16_t> LinkWriter::sheets(std::string_view first, std::string_view last) {
  const Sheet* const from = book_.find_sheet(first);
  const Sheet* const to = first == last ? from : book_.find_sheet(last);
  if (!from || !to) return std::nullopt;
  return entry(Book::kOwn, positions_.at(from), positions_.at(to));
}

const std::uint32_t* LinkWriter::find(std::string_view name, const Sheet* scope) const {
  const auto found = names_.find({scope, fold_case(name)});
  return found == names_.end() ? nullptr : &found->second;
}

std::uint32_t LinkWriter::name(std::string_view name, const Sheet* from) {
  const std::uint32_t* number = from ? find(name, from) : nullptr;
  if (!number) number = find(name, nullptr);
  if (number) return *number;
  undefined_.emplace_back(name);
  return names_[{nullptr, fold_case(name)}] = ++last_name_;
}

std::optional<std::uint32_t> LinkWriter::name_of(std::string_view name,
                                                 std::string_view sheet) const {
  const Sheet* const scope = book_.find_sheet(sheet);
  const std::uint32_t* number = scope ? find(name, scope) : nullptr;
  if (!number) number = find(name, nullptr);
  return number ? std::optional(*number) : std::nullopt;
}

std::pair<std::uint16_t, std::uint32_t> LinkWriter::function(std::string_view name) {
  const std::uint16_t number = entry(Book::kFunctions, kNone, kNone);
  const auto found = function_numbers_.find(name);
  if (found != function_numbers_.end()) return {number, found->second};
  functions_.emplace_back(name);
  const auto place = static_cast<std::uint32_t>(functions_.size());
  function_numbers_.emplace(name, place);
  return {number, place};
}

void LinkWriter::write(RecordWriter& out) const {
  constexpr std::uint32_t kOwnMark = 0x0401;
  constexpr std::uint32_t kFunctionsMark = 0x3A01;
  constexpr std::string_view kNoReference{"\x02\0\x1C\x17", 4};  // in place of a definition
  if (entries_.empty()) return;
  out.record(kSupBook, {static_cast<std::uint32_t>(book_.sheets().size()), kOwnMark});
  if (!functions_.empty()) {
    out.record(kSupBook, {1, kFunctionsMark});
    Characters characters;
    for (const std::string& name : functions_) {
      characters.take(name);
      out.begin(kExternName);
      out.put16(0);
      out.put32(0);
      out.put_short_text(characters);
      out.put(kNoReference);
      out.end();
    }
  }
  out.begin(kExternSheet);
  out.put16(static_cast<std::uint32_t>(entries_.size()));
  for (const auto& [book, first, last] : entries_) {
    out.keep_together(6);
    out.put16(book == Book::kOwn ? 0 : 1);
    out.put16(static_cast<std::uint32_t>(first));
    out.put16(static_cast<std::uint32_t>(last));
  }
  out.end();
}

}  // namespace engine::xls
