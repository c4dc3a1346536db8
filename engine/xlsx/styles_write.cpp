// The style sheet as it is to be saved: a copy of the tree that was read, patched.
//
// Cells name formats, and formats name fonts, fills and borders, by place in a list. Entries of the
// file keep their places, because parts that nobody rewrites name them too. Fonts and formats of
// the file are patched where they stand. Fills and borders are shared without the workbook knowing,
// so theirs never change: a format that looks different names another entry. An added entry takes
// the number of an equal one, or stands behind the others.

#include <algorithm>
#include <array>
#include <map>
#include <unordered_map>
#include <utility>

#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/styles_keys.h"
#include "engine/xlsx/styles_part.h"
#include "engine/xlsx/styles_patch.h"
#include "engine/xlsx/styles_read.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kSections[] = {"numFmts",      "fonts",   "fills",      "borders",
                                          "cellStyleXfs", "cellXfs", "cellStyles", "dxfs",
                                          "tableStyles",  "colors",  "extLst"};

// Bytes that an added format and its share of the text around all of them mostly need at most.
constexpr std::size_t kRoomPerFormat = 192;

// Programs show the first two fills like this, whatever the file says there.
constexpr Fill kReservedFills[] = {{0, {}, {}, 0}, {17, {}, {}, 0}};

// One list of the style sheet.
class EntryList {
 public:
  EntryList(pugi::xml_node original, pugi::xml_node copy, std::string_view list,
            std::string_view entry)
      : sheet_(copy), list_(list), entry_(entry) {
    originals = style_entries(original, list, entry, {});
    count_ = size_of_file();
  }

  // As read; by number.
  std::vector<pugi::xml_node> originals;

  std::uint32_t size_of_file() const { return static_cast<std::uint32_t>(originals.size()); }
  std::uint32_t size() const { return count_; }

  pugi::xml_node original(std::uint32_t number) const {
    return number < originals.size() ? originals[number] : pugi::xml_node();
  }

  // The number of an entry that another element names. Beyond the list it means the first entry.
  std::uint32_t named_by(pugi::xml_node element, const char* attribute) const {
    const std::uint32_t number = element.attribute(attribute).as_uint();
    return number < size_of_file() ? number : 0;
  }

  // The file's entry in the copy.
  pugi::xml_node copy(std::uint32_t number) {
    if (copies_.empty()) copies_ = style_entries(sheet_, list_, entry_, {});
    return copies_[number];
  }

  // The same, to be patched.
  pugi::xml_node changed(std::uint32_t number) {
    settle_alternatives(copy(number));
    return copy(number);
  }

  // A new entry behind the others: like a given one, or empty.
  pugi::xml_node append(pugi::xml_node model) {
    ++count_;
    return model ? grown().append_copy(model) : package::append_child(grown(), entry_);
  }
  // The list in the copy, which it has now if it had none.
  pugi::xml_node grown() {
    if (!grown_) grown_ = ordered_child(sheet_, list_, kSections);
    return grown_;
  }
  void count_one() { ++count_; }

  // Makes the keys of the file's entries known, once, by `key_of(number)`.
  template <class KeyOf>
  void learn(KeyOf key_of) {
    if (learned_) return;
    learned_ = true;
    first_equal_.reserve(originals.size());
    for (std::uint32_t number = 0; number < originals.size(); ++number)
      first_equal_.push_back(numbers_.try_emplace(key_of(number), number).first->second);
  }

  // Of entries that the file has several times, the first.
  std::uint32_t first_equal(std::uint32_t number) const {
    return number < first_equal_.size() ? first_equal_[number] : number;
  }

  // The number of the entry with the key, and whether it is the next one that has to be appended.
  std::pair<std::uint32_t, bool> number_of(std::string key) {
    const auto [at, is_new] = numbers_.try_emplace(std::move(key), count_);
    return {at->second, is_new};
  }

  void correct_count() {
    if (auto list = package::child(sheet_, Family::Main, list_))
      set_attribute(list, "count", std::to_string(count_));
  }

 private:
  pugi::xml_node sheet_;
  std::string_view list_;
  std::string_view entry_;
  std::uint32_t count_ = 0;
  pugi::xml_node grown_;  // the list in the copy, once an entry was appended
  bool learned_ = false;
  std::vector<pugi::xml_node> copies_;
  std::vector<std::uint32_t> first_equal_;
  std::unordered_map<std::string, std::uint32_t> numbers_;
};

// What a new format says: what differs from the first entries of the file's lists, or from what is
// usual.
unsigned set_aspects(const FormatRecord& record, const FormatNumbers& numbers) {
  const FormatRecord usual;
  unsigned aspects = record.changed;
  if (record.font != usual.font) aspects |= kFormatFont;
  if (record.number_format != usual.number_format) aspects |= kFormatNumber;
  if (record.alignment != usual.alignment) aspects |= kFormatAlignment;
  if (record.border != usual.border || numbers.border != 0) aspects |= kFormatBorder;
  if (record.fill != usual.fill || numbers.fill != 0) aspects |= kFormatFill;
  if (record.locked != usual.locked || record.hidden != usual.hidden) aspects |= kFormatProtection;
  return aspects;
}

// An aspect of a format: the attribute that switches it on, and what names the part that has it.
struct AspectNames {
  const char* apply;
  FormatAspect aspect;
  const char* name;
  std::uint32_t FormatNumbers::*number;
};
constexpr AspectNames kAspectNames[] = {
    {"applyNumberFormat", kFormatNumber, "numFmtId", &FormatNumbers::number_format},
    {"applyFont", kFormatFont, "fontId", &FormatNumbers::font},
    {"applyFill", kFormatFill, "fillId", &FormatNumbers::fill},
    {"applyBorder", kFormatBorder, "borderId", &FormatNumbers::border},
};
constexpr const char* kApplyAlignment = "applyAlignment";
constexpr const char* kApplyProtection = "applyProtection";

void patch_children(pugi::xml_node xf, const FormatRecord& record, unsigned aspects) {
  if (aspects & kFormatAlignment) patch_alignment(xf, record.alignment);
  if (aspects & kFormatProtection) patch_protection(xf, record.locked, record.hidden);
}

// Writes the aspects into the element of a format.
void patch_format(pugi::xml_node xf, const FormatRecord& record, const FormatNumbers& numbers,
                  unsigned aspects) {
  for (const auto& [apply, aspect, name, number] : kAspectNames) {
    if ((aspects & aspect) == 0) continue;
    set_attribute(xf, name, std::to_string(numbers.*number));
    set_attribute(xf, apply, "1");
  }
  if (aspects & kFormatAlignment) set_attribute(xf, kApplyAlignment, "1");
  if (aspects & kFormatProtection) set_attribute(xf, kApplyProtection, "1");
  patch_children(xf, record, aspects);
}

// Puts an attribute of a short name.
char* put_attribute(char* at, std::string_view name, std::uint32_t number) {
  *at++ = ' ';
  at = std::ranges::copy(name, at).out;
  *at++ = '=';
  *at++ = '"';
  at = write_integer(at, static_cast<long long>(number));
  *at++ = '"';
  return at;
}

class StylesWriter {
 public:
  StylesWriter(const package::XmlTree& original, const package::XmlTree& copy, const Styles& styles)
      : styles_(styles),
        sheet_(copy.root()),
        numbers_(original.root(), sheet_, "numFmts", "numFmt"),
        fonts_(original.root(), sheet_, "fonts", "font"),
        fills_(original.root(), sheet_, "fills", "fill"),
        borders_(original.root(), sheet_, "borders", "border"),
        style_formats_(original.root(), sheet_, "cellStyleXfs", "xf"),
        formats_(original.root(), sheet_, "cellXfs", "xf") {}

  WrittenStyles write(const package::XmlTree& copy) {
    write_number_formats();
    write_fonts();
    mend_formats();
    complete_lists();
    write_formats();
    for (EntryList* list : {&numbers_, &fonts_, &fills_, &borders_, &style_formats_, &formats_})
      list->correct_count();
    WrittenStyles made;
    made.format_numbers = std::move(format_numbers_);
    if (added_formats_.empty()) {
      made.bytes = copy.serialize();
      return made;
    }
    const auto [head, tail] = copy.cut_in(formats_.grown());
    made.bytes = std::move(added_formats_.insert(0, head).append(tail));
    return made;
  }

 private:
  void write_number_formats();
  void write_fonts();
  void mend_formats();
  void complete_lists();
  void write_formats();

  void mend_numbers(pugi::xml_node xf) const;
  std::string copied_format(pugi::xml_node model, const FormatRecord& record,
                            const FormatNumbers& numbers);
  void append_format(const FormatRecord& record, const FormatNumbers& numbers);
  // The numbers of entries, which are appended unless there are equal ones.
  void add_font(const FontRecord& record);
  std::uint32_t add_fill(const Fill& fill);
  std::uint32_t add_border(const Border& border, pugi::xml_node model);
  std::uint32_t add_format(const FormatRecord& record);

  void learn_fills();
  void learn_borders();
  void learn_formats();
  std::string_view font_rest(const FontRecord& record);
  std::string_view format_rest(const FormatRecord& record);
  FormatNumbers numbers_of(const FormatRecord& record);
  std::uint32_t border_number(const FormatRecord& record);
  std::uint32_t fill_number(const FormatRecord& record);

  const Styles& styles_;
  pugi::xml_node sheet_;
  EntryList numbers_;
  EntryList fonts_;
  EntryList fills_;
  EntryList borders_;
  EntryList style_formats_;
  EntryList formats_;
  // The answers of font_rest() and format_rest() and what these were given: added entries mostly
  // have the same model.
  struct Rest {
    std::uint32_t model = kNoModel;
    bool is_renamed = false;
    std::string text;
  };
  Rest font_rest_;
  Rest format_rest_;
  // Numbers of fills by those in the book, and of borders by those in the book and of the entry
  // that they descend from.
  std::unordered_map<std::uint32_t, std::uint32_t> fill_numbers_;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> border_numbers_;
  // Formats may be very many: what is added is written as text and never becomes part of the tree.
  std::string added_formats_;
  std::vector<std::uint32_t> font_numbers_;
  std::vector<std::uint32_t> format_numbers_;
};

void StylesWriter::write_number_formats() {
  std::vector<std::uint32_t> stored;
  for (const auto number : numbers_.originals)
    stored.push_back(number.attribute("numFmtId").as_uint());
  std::ranges::sort(stored);
  for (const std::uint32_t id : styles_.number_formats()) {
    if (std::ranges::binary_search(stored, id)) continue;
    const auto number = numbers_.append({});
    set_attribute(number, "numFmtId", std::to_string(id));
    set_attribute(number, "formatCode", escape(styles_.code_of(id)));
  }
}

std::string_view StylesWriter::font_rest(const FontRecord& record) {
  const bool is_renamed = (record.changed & kFontName) != 0;
  if (record.model != font_rest_.model || is_renamed != font_rest_.is_renamed)
    font_rest_ = {record.model, is_renamed,
                  rest_of_font(fonts_.original(record.model), is_renamed)};
  return font_rest_.text;
}

std::string_view StylesWriter::format_rest(const FormatRecord& record) {
  if (record.model != format_rest_.model)
    format_rest_ = {record.model, false, rest_of_format(formats_.original(record.model))};
  return format_rest_.text;
}

void StylesWriter::write_fonts() {
  const std::uint32_t from_file = styles_.fonts_from_file();
  for (std::uint32_t index = 0; index < from_file; ++index) {
    const FontRecord& record = styles_.font(index);
    if (record.changed != 0) patch_font(fonts_.changed(index), record, record.changed);
    font_numbers_.push_back(index);
  }
  if (styles_.font_count() == from_file) return;
  fonts_.learn([this](std::uint32_t number) {
    const FontRecord& record = styles_.font(number);
    return font_key(record, font_rest(record));
  });
  for (std::uint32_t index = from_file; index < styles_.font_count(); ++index)
    add_font(styles_.font(index));
}

void StylesWriter::add_font(const FontRecord& record) {
  const auto [number, is_new] = fonts_.number_of(font_key(record, font_rest(record)));
  font_numbers_.push_back(number);
  if (!is_new) return;
  const auto model = fonts_.original(record.model);
  patch_font(fonts_.append(model), record, model ? record.changed : kAllAspects);
}

// A number beyond its list would come to mean one of the entries that are appended.
void StylesWriter::mend_numbers(pugi::xml_node xf) const {
  const std::pair<const char*, const EntryList*> named[] = {
      {"fontId", &fonts_}, {"fillId", &fills_}, {"borderId", &borders_}, {"xfId", &style_formats_}};
  for (const auto& [attribute, list] : named)
    if (list->named_by(xf, attribute) != xf.attribute(attribute).as_uint())
      set_attribute(xf, attribute, "0");
}

void StylesWriter::mend_formats() {
  for (EntryList* list : {&style_formats_, &formats_})
    for (std::uint32_t entry = 0; entry < list->size_of_file(); ++entry)
      mend_numbers(list->copy(entry));
}

// What a style sheet must have although this file lacks it.
void StylesWriter::complete_lists() {
  learn_fills();
  for (std::uint32_t number = fills_.size(); number < std::size(kReservedFills); ++number)
    add_fill(kReservedFills[number]);
  learn_borders();
  if (borders_.size() == 0) add_border(Border(), {});
  if (style_formats_.size() > 0) return;
  const auto xf = style_formats_.append({});
  for (const char* name : {"numFmtId", "fontId", "fillId", "borderId"})
    set_attribute(xf, name, "0");
}

void StylesWriter::write_formats() {
  const std::uint32_t from_file = styles_.formats_from_file();
  for (std::uint32_t index = 0; index < from_file; ++index) {
    const FormatRecord& record = styles_.format(index);
    if (record.changed != 0)
      patch_format(formats_.changed(index), record, numbers_of(record), record.changed);
  }
  if (styles_.format_count() == from_file) return;
  learn_formats();
  added_formats_.reserve((styles_.format_count() - from_file) * kRoomPerFormat);
  format_numbers_.reserve(styles_.format_count());
  for (std::uint32_t index = 0; index < from_file; ++index) format_numbers_.push_back(index);
  for (std::uint32_t index = from_file; index < styles_.format_count(); ++index)
    format_numbers_.push_back(add_format(styles_.format(index)));
}

void StylesWriter::learn_formats() {
  formats_.learn([this](std::uint32_t number) {
    const FormatRecord& record = styles_.format(number);
    return format_key(record, numbers_of(record), format_rest(record));
  });
}

std::uint32_t StylesWriter::add_format(const FormatRecord& record) {
  const FormatNumbers numbers = numbers_of(record);
  const auto [number, is_new] =
      formats_.number_of(format_key(record, numbers, format_rest(record)));
  if (!is_new) return number;
  formats_.count_one();
  if (const auto model = formats_.original(record.model))
    added_formats_.append(copied_format(model, record, numbers));
  else append_format(record, numbers);
  return number;
}

std::string StylesWriter::copied_format(pugi::xml_node model, const FormatRecord& record,
                                        const FormatNumbers& numbers) {
  pugi::xml_node list = formats_.grown();
  const pugi::xml_node xf = list.append_copy(model);
  mend_numbers(xf);
  patch_format(xf, record, numbers, record.changed);
  std::string text = package::serialize_xml(xf);
  list.remove_child(xf);
  return text;
}

void StylesWriter::append_format(const FormatRecord& record, const FormatNumbers& numbers) {
  const unsigned aspects = set_aspects(record, numbers);
  std::string& out = added_formats_;
  const std::string name = package::name_in(formats_.grown(), "xf");
  std::array<char, 512> attributes;  // there are eleven
  char* at = attributes.data();
  for (const AspectNames& one : kAspectNames)
    at = put_attribute(at, one.name, aspects & one.aspect ? numbers.*one.number : 0);
  at = put_attribute(at, "xfId", 0);
  for (const AspectNames& one : kAspectNames)
    if (aspects & one.aspect) at = put_attribute(at, one.apply, 1);
  if (aspects & kFormatAlignment) at = put_attribute(at, kApplyAlignment, 1);
  if (aspects & kFormatProtection) at = put_attribute(at, kApplyProtection, 1);
  out.append("<").append(name).append(attributes.data(), at);
  std::string children;
  if (aspects & (kFormatAlignment | kFormatProtection)) {
    pugi::xml_node list = formats_.grown();
    const pugi::xml_node xf = package::append_child(list, "xf");
    patch_children(xf, record, aspects);
    for (const pugi::xml_node child : xf.children()) children.append(package::serialize_xml(child));
    list.remove_child(xf);
  }
  if (children.empty()) out.append("/>");
  else out.append(">").append(children).append("</").append(name).append(">");
}

FormatNumbers StylesWriter::numbers_of(const FormatRecord& record) {
  const std::uint32_t font = font_numbers_[record.font];
  return {record.number_format, fonts_.first_equal(font), fills_.first_equal(fill_number(record)),
          borders_.first_equal(border_number(record))};
}

std::uint32_t StylesWriter::border_number(const FormatRecord& record) {
  std::uint32_t model = kNoModel;
  if (const auto format = formats_.original(record.model)) {
    model = borders_.named_by(format, "borderId");
    if ((record.changed & kFormatBorder) == 0) return model;
  }
  const auto [at, is_new] = border_numbers_.try_emplace({record.border, model});
  if (is_new) at->second = add_border(styles_.border(record.border), borders_.original(model));
  return at->second;
}

std::uint32_t StylesWriter::fill_number(const FormatRecord& record) {
  const auto format = formats_.original(record.model);
  if (format && (record.changed & kFormatFill) == 0) return fills_.named_by(format, "fillId");
  const auto [at, is_new] = fill_numbers_.try_emplace(record.fill);
  if (is_new) at->second = add_fill(styles_.fill(record.fill));
  return at->second;
}

void StylesWriter::learn_borders() {
  borders_.learn([this](std::uint32_t number) {
    const auto border = borders_.original(number);
    return border_key(read_border(border), rest_of_border(border));
  });
}

std::uint32_t StylesWriter::add_border(const Border& border, pugi::xml_node model) {
  const auto [number, is_new] = borders_.number_of(border_key(border, rest_of_border(model)));
  if (is_new) patch_border(borders_.append(model), border);
  return number;
}

void StylesWriter::learn_fills() {
  fills_.learn([this](std::uint32_t number) {
    const Fill fill = read_fill(fills_.original(number), number);
    const bool is_shown = number >= std::size(kReservedFills) || fill == kReservedFills[number];
    return is_shown ? fill_key(fill) : "reserved " + std::to_string(number);
  });
}

std::uint32_t StylesWriter::add_fill(const Fill& fill) {
  const auto [number, is_new] = fills_.number_of(fill_key(fill));
  if (is_new) write_fill(fills_.append({}), fill);
  return number;
}

}  // namespace

WrittenStyles StylesPart::write(const Styles& styles) const {
  const package::XmlTree copy = document_.copy();
  return StylesWriter(document_, copy, styles).write(copy);
}

}  // namespace engine::xlsx
