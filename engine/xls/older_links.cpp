#include "engine/xls/older_links.h"

#include <algorithm>

#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

constexpr std::uint16_t kMost = 0x7FFF;
constexpr std::int16_t kLost = -1;
constexpr std::int16_t kWholeBook = -2;

// What the name of a sheet in a list begins with.
enum Beginning : unsigned {
  kOtherBook = 1,
  kThisSheet = 2,
  kOwnSheet = 3,
  kOwnBook = 4,
  kAddIns = ':',
};

// Books in the present list.
enum Known : std::uint16_t { kOwn, kAddIn, kFirstOther };

}  // namespace

std::uint16_t OlderLinks::Texts::number(const std::string& text) {
  const auto next = static_cast<std::uint16_t>(std::min<std::size_t>(texts_.size(), kMost));
  const auto [known, is_new] = numbers_.try_emplace(text, next);
  if (is_new && texts_.size() <= kMost) texts_.push_back(text);
  return known->second;
}

OlderLinks::OlderLinks(const OlderTexts& texts, const std::vector<std::string>& sheets)
    : texts_(texts), own_count_(sheets.size()), books_(kFirstOther) {
  for (std::size_t i = 0; i < sheets.size() && i < kMost; ++i)
    own_sheets_.try_emplace(sheets[i], static_cast<std::int16_t>(i));
  paths_.number({static_cast<char>(kOwnBook)});
  paths_.number({static_cast<char>(kAddIns)});
}

bool OlderLinks::take_sheet(std::string_view data, OlderList& list) {
  Fields in(data);
  const std::size_t length = in.take8();
  const unsigned beginning = in.take8();
  OlderList::Entry& made = list.entries.emplace_back();
  switch (beginning) {
    case kThisSheet:
      made.sheet = list.sheet;
      return true;
    case kOwnBook:
      made.sheet = kWholeBook;
      return true;
    case kAddIns:
      made = {kAddIn, kWholeBook, {}};
      return true;
    case kOwnSheet: {
      const auto found = own_sheets_.find(texts_.utf8(in.take(length)));
      made.sheet = found == own_sheets_.end() ? kLost : found->second;
      return true;
    }
    default:
      break;
  }
  // The file's name stands in brackets behind its folders, and the sheet's name behind that.
  std::string path = texts_.utf8(data.substr(std::min<std::size_t>(1, data.size()), length));
  std::string sheet;
  const std::size_t open = path.find('[');
  const std::size_t close = path.rfind(']');
  const bool has_sheet = open < close && close != std::string::npos;
  if (has_sheet) {
    sheet = path.substr(close + 1);
    path = path.substr(0, open) + path.substr(open + 1, close - open - 1);
  }
  made.book = paths_.number(path);
  if (made.book >= books_.size()) books_.resize(made.book + std::size_t{1});
  made.sheet =
      has_sheet ? static_cast<std::int16_t>(books_[made.book].sheets.number(sheet)) : kWholeBook;
  return beginning == kOtherBook;
}

bool OlderLinks::take_name(std::string_view data, OlderList& list) {
  constexpr unsigned kOfPrograms = 0x1A;  // what they send, and their objects
  constexpr std::string_view kNoValue{"\2\0\x1C\x17", 4};
  if (list.entries.empty()) return false;
  Fields in(data);
  const unsigned flags = in.take16();
  const bool is_of_sheet = in.take16() != 0;
  in.skip(2);
  OlderList::Entry& of = list.entries.back();
  if (of.book == kOwn) return true;  // the book's own list has it
  std::string record;
  package::put16(record, 0);
  package::put16(record, is_of_sheet && of.sheet >= 0 ? of.sheet + std::uint64_t{1} : 0);
  package::put16(record, 0);
  record += texts_.short_text(in.take(in.take8()));
  record += kNoValue;
  of.names.push_back(books_[of.book].names.number(record) + std::uint16_t{1});
  return (flags & kOfPrograms) == 0;
}

std::uint16_t OlderLinks::sheets(const OlderList& list, std::int16_t number, unsigned first,
                                 unsigned last) {
  const OlderList::Entry* entry = list.find(number);
  if (number >= 0 && !entry) return number_of({kOwn, kLost, kLost});
  if (entry && (entry->book != kOwn || entry->sheet != kWholeBook))
    return number_of({entry->book, entry->sheet, entry->sheet});
  return number_of({kOwn, static_cast<std::int16_t>(first), static_cast<std::int16_t>(last)});
}

std::uint16_t OlderLinks::name(const OlderList& list, std::int16_t number, std::uint16_t& name) {
  const OlderList::Entry* entry = list.find(number);
  if (!entry || entry->book == kOwn) return number_of({kOwn, kWholeBook, kWholeBook});
  const auto& names = entry->names;
  name = name != 0 && name <= names.size() ? names[name - std::size_t{1}] : std::uint16_t{0};
  return number_of({entry->book, kWholeBook, kWholeBook});
}

std::uint16_t OlderLinks::number_of(const Entry& entry) {
  const auto [known, is_new] = numbers_.try_emplace(
      entry, static_cast<std::uint16_t>(std::min<std::size_t>(entries_.size(), kMost)));
  if (is_new && entries_.size() <= kMost) entries_.push_back(entry);
  return known->second;
}

void OlderLinks::write(RecordWriter& out) const {
  constexpr std::uint32_t kOwnMark = 0x0401;
  constexpr std::uint32_t kAddInMark = 0x3A01;
  if (entries_.empty()) return;
  for (std::size_t i = 0; i < books_.size(); ++i) {
    const Book& book = books_[i];
    if (i == kOwn) {
      out.record(kSupBook, {static_cast<std::uint32_t>(own_count_), kOwnMark});
    } else if (i == kAddIn) {
      out.record(kSupBook, {1, kAddInMark});
    } else {
      out.begin(kSupBook);
      out.put16(static_cast<std::uint32_t>(book.sheets.all().size()));
      out.put_long_text(Characters(paths_.all()[i]));
      for (const std::string& sheet : book.sheets.all()) out.put_long_text(Characters(sheet));
      out.end();
    }
    for (const std::string& name : book.names.all()) out.copy(kExternName, name);
  }
  out.begin(kExternSheet);
  out.put16(static_cast<std::uint32_t>(entries_.size()));
  for (const auto& [book, first, last] : entries_) {
    out.put16(book);
    out.put16(static_cast<std::uint16_t>(first));
    out.put16(static_cast<std::uint16_t>(last));
  }
  out.end();
}

}  // namespace engine::xls
