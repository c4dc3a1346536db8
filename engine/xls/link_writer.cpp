#include "engine/xls/link_writer.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "engine/package/output.h"
#include "engine/text/fold.h"
#include "engine/xls/built_in_names.h"

namespace engine::xls {

namespace {

constexpr std::size_t kMaxEntries = 0xFFFF;

// The place among the file's names that a name of the model has; nothing for a new one.
std::optional<std::size_t> place_in_file(const DefinedName& name, std::size_t count) {
  std::size_t place = 0;
  const char* const end = name.details.data() + name.details.size();
  const auto [stop, error] = std::from_chars(name.details.data(), end, place);
  return error == std::errc() && stop == end && place < count ? std::optional(place) : std::nullopt;
}

}  // namespace

LinkWriter::LinkWriter(const Workbook& book, const LinkTable& file)
    : book_(book), file_(file), books_(file.books.size()) {
  for (const auto& sheet : book.sheets())
    positions_.emplace(sheet.get(), static_cast<int>(positions_.size()));
  for (std::size_t i = 0; i < file.books.size(); ++i) {
    const LinkedBook& its = file.books[i];
    if (its.kind == LinkedBook::Kind::kOwn && !own_book_) own_book_ = i;
    if (its.kind != LinkedBook::Kind::kAddIn || functions_book_) continue;
    functions_book_ = i;
    for (const LinkedBook::Name& name : its.names)
      function_numbers_.try_emplace(name.name, ++last_function_);
  }
  take_entries();
  take_names();
}

// Entries of the file name sheets by the places that these had in it.
void LinkWriter::take_entries() {
  const auto present = [&](int number) {
    if (number < 0) return number;
    const auto found = positions_.find(file_.sheet(number));
    return found == positions_.end() ? kLost : found->second;
  };
  for (const LinkedSheets& one : file_.entries) {
    const bool is_own =
        one.book < file_.books.size() && file_.books[one.book].kind == LinkedBook::Kind::kOwn;
    int first = is_own ? present(one.first) : one.first;
    int last = is_own ? present(one.last) : one.last;
    if (is_own && (first == kLost || last == kLost)) first = last = kLost;
    if (is_own && first > last) std::swap(first, last);
    const Entry its{one.book, first, last};
    numbers_.try_emplace(its, static_cast<std::uint16_t>(entries_.size()));
    entries_.push_back(its);
  }
}

void LinkWriter::take_names() {
  names_.resize(file_.names.size());
  std::vector<const DefinedName*> added;
  for (const DefinedName& name : book_.names) {
    const auto place = place_in_file(name, names_.size());
    if (place && !names_[*place].defined) names_[*place] = {&name, name.name, name.scope};
    else added.push_back(&name);
  }
  for (std::size_t i = 0; i < names_.size(); ++i) {
    Name& name = names_[i];
    const NumberedName& its = file_.names[i];
    if (!name.defined) {
      name.text = its.name;
      name.scope = its.sheet == 0 ? nullptr : file_.sheet(its.sheet - 1);
      // The name of a sheet that is gone, or one that programs know by its number.
      name.is_spare = its.is_defined &&
                      (its.name.starts_with(kBuiltInPrefix) || (its.sheet != 0 && !name.scope));
      if (name.is_spare) continue;
    }
    name_numbers_.try_emplace({name.scope, fold_case(name.text)},
                              static_cast<std::uint32_t>(i + 1));
  }
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (!names_[i].is_spare) continue;
    std::size_t number = i + 1;
    do names_[i].text = "_unused" + std::to_string(number++);
    while (find(names_[i].text, nullptr));
  }
  for (const DefinedName* name : added) {
    // One that has gone before leaves its place to one of the same name.
    const std::uint32_t* const number = find(name->name, name->scope);
    if (number && !names_[*number - 1].defined && file_.names.size() >= *number &&
        file_.names[*number - 1].is_defined)
      names_[*number - 1].defined = name;
    else add_name({name, name->name, name->scope});
  }
}

std::uint32_t LinkWriter::add_name(Name name) {
  const auto number = static_cast<std::uint32_t>(names_.size() + 1);
  name_numbers_.try_emplace({name.scope, fold_case(name.text)}, number);
  names_.push_back(std::move(name));
  return number;
}

std::size_t LinkWriter::own_book() {
  if (!own_book_) own_book_ = books_++;
  return *own_book_;
}

std::size_t LinkWriter::functions_book() {
  own_book();
  if (!functions_book_) functions_book_ = books_++;
  return *functions_book_;
}

std::uint16_t LinkWriter::entry(std::size_t book, int first, int last) {
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
  return entry(own_book(), positions_.at(from), positions_.at(to));
}

std::optional<LinkWriter::Entry> LinkWriter::find_foreign(std::string_view prefix) const {
  const std::size_t close = prefix.find(']');
  if (!prefix.starts_with('[') || close == std::string_view::npos) return std::nullopt;
  int number = 0;
  const auto [stop, error] = std::from_chars(prefix.data() + 1, prefix.data() + close, number);
  const auto book = std::ranges::find_if(file_.books, [&](const LinkedBook& one) {
    return one.kind == LinkedBook::Kind::kOther && one.number == number;
  });
  if (error != std::errc() || stop != prefix.data() + close || book == file_.books.end())
    return std::nullopt;
  const auto place = static_cast<std::size_t>(book - file_.books.begin());
  const std::string_view sheets = prefix.substr(close + 1);
  if (sheets.empty()) return Entry{place, kNone, kNone};
  const auto position = [&](std::string_view name) {
    const auto found = std::ranges::find_if(
        book->sheets, [&](const std::string& one) { return equal_ignoring_case(one, name); });
    return found == book->sheets.end() ? kLost : static_cast<int>(found - book->sheets.begin());
  };
  const std::size_t colon = sheets.find(':');
  const int first = position(sheets.substr(0, colon));
  const int last = colon == std::string_view::npos ? first : position(sheets.substr(colon + 1));
  if (first == kLost || last == kLost) return std::nullopt;
  return Entry{place, first, last};
}

std::optional<std::uint16_t> LinkWriter::foreign_sheets(std::string_view prefix) {
  const auto found = find_foreign(prefix);
  if (!found) return std::nullopt;
  const auto& [book, first, last] = *found;
  return entry(book, first, last);
}

std::optional<std::pair<std::uint16_t, std::uint32_t>> LinkWriter::foreign_name(
    std::string_view prefix, std::string_view name) {
  const auto found = find_foreign(prefix);
  if (!found) return std::nullopt;
  const auto& [book, first, last] = *found;
  const std::vector<LinkedBook::Name>& names = file_.books[book].names;
  const int scope = first == kNone ? 0 : first + 1;
  const auto its = std::ranges::find_if(names, [&, scope = scope](const LinkedBook::Name& one) {
    return one.sheet == scope && equal_ignoring_case(one.name, name);
  });
  if (its == names.end()) return std::nullopt;
  return std::pair{entry(book, first, last), static_cast<std::uint32_t>(its - names.begin() + 1)};
}

const std::uint32_t* LinkWriter::find(std::string_view name, const Sheet* scope) const {
  const auto found = name_numbers_.find({scope, fold_case(name)});
  return found == name_numbers_.end() ? nullptr : &found->second;
}

const std::uint32_t* LinkWriter::find_from(const Sheet* from, std::string_view name) const {
  const std::uint32_t* const own = from ? find(name, from) : nullptr;
  return own ? own : find(name, nullptr);
}

std::uint32_t LinkWriter::name(std::string_view name, const Sheet* from) {
  const std::uint32_t* const number = find_from(from, name);
  return number ? *number : add_name({nullptr, std::string(name), nullptr});
}

std::optional<std::uint32_t> LinkWriter::name_of_file(std::string_view name,
                                                      const Sheet* from) const {
  const std::uint32_t* const number = find_from(from, name);
  return number && *number <= file_.names.size() ? std::optional(*number) : std::nullopt;
}

std::optional<std::uint32_t> LinkWriter::name_of(std::string_view name,
                                                 std::string_view sheet) const {
  const std::uint32_t* const number = find_from(book_.find_sheet(sheet), name);
  return number ? std::optional(*number) : std::nullopt;
}

std::pair<std::uint16_t, std::uint32_t> LinkWriter::function(std::string_view name) {
  const std::uint16_t number = entry(functions_book(), kNone, kNone);
  const auto found = function_numbers_.find(name);
  if (found != function_numbers_.end()) return {number, found->second};
  functions_.emplace_back(name);
  function_numbers_.emplace(name, ++last_function_);
  return {number, last_function_};
}

void LinkWriter::write_new_functions(RecordWriter& out) const {
  constexpr std::string_view kNoReference{"\x02\0\x1C\x17", 4};  // in place of a definition
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

void LinkWriter::write_new_books(RecordWriter& out) const {
  constexpr std::uint32_t kOwnMark = 0x0401;
  constexpr std::uint32_t kFunctionsMark = 0x3A01;
  for (std::size_t book = file_.books.size(); book < books_; ++book) {
    if (book == own_book_)
      out.record(kSupBook, {static_cast<std::uint32_t>(sheet_count()), kOwnMark});
    if (book != functions_book_) continue;
    out.record(kSupBook, {1, kFunctionsMark});
    write_new_functions(out);
  }
}

void LinkWriter::write_entries(RecordWriter& out) const {
  if (entries_.empty()) return;
  out.begin(kExternSheet);
  out.put16(static_cast<std::uint32_t>(entries_.size()));
  for (const auto& [book, first, last] : entries_) {
    out.keep_together(6);
    out.put16(static_cast<std::uint32_t>(book));
    out.put16(static_cast<std::uint32_t>(first));
    out.put16(static_cast<std::uint32_t>(last));
  }
  out.end();
}

}  // namespace engine::xls
