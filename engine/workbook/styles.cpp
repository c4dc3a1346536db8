#include "engine/workbook/styles.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <utility>

#include "engine/workbook/number_format.h"

namespace engine {

namespace {

// So that the next entry needs no memory.
template <class T>
void make_room(std::vector<T>& list) {
  if (list.size() == list.capacity()) list.reserve(list.size() * 2 + 8);
}

std::size_t joined(std::size_t hash, std::size_t with) {
  constexpr std::size_t kOdd = 0x9E3779B97F4A7C15U & SIZE_MAX;
  hash = (hash ^ with) * kOdd;
  return hash ^ (hash >> 29);
}

std::size_t hash_of(const Color& color) {
  const std::uint64_t entry = std::uint64_t{color.value} << 8 | static_cast<unsigned>(color.kind);
  return joined(std::hash<std::uint64_t>()(entry), std::hash<double>()(color.tint));
}

}  // namespace

std::size_t LookHash::operator()(const Border& border) const {
  std::size_t hash = border.diagonals;
  for (const BorderSide* side :
       {&border.left, &border.right, &border.top, &border.bottom, &border.diagonal})
    hash = joined(joined(hash, side->style), hash_of(side->color));
  return hash;
}

std::size_t LookHash::operator()(const Fill& fill) const {
  const std::size_t colors = joined(hash_of(fill.foreground), hash_of(fill.background));
  return joined(joined(colors, fill.pattern), fill.carried);
}

Styles::Styles(FontRecord default_font) : default_font_(std::move(default_font)) {
  end_of_file_entries();
}

std::uint32_t Styles::font_of(std::uint32_t format_index) const {
  const std::uint32_t font = format(format_index).font;
  return font < fonts_.size() ? font : 0;
}

FormatRecord& Styles::change_format(std::uint32_t index, unsigned aspects) {
  assert(index < formats_.size());
  changed_ = true;
  FormatRecord& record = formats_[index];
  record.changed = static_cast<std::uint16_t>(record.changed | aspects);
  return record;
}

FontRecord& Styles::change_font(std::uint32_t index, unsigned aspects) {
  assert(index < fonts_.size());
  changed_ = true;
  FontRecord& record = fonts_[index];
  record.changed = static_cast<std::uint16_t>(record.changed | aspects);
  return record;
}

void Styles::set_border(std::uint32_t format_index, const Border& border) {
  const std::uint32_t number = borders_.take(border);
  FormatRecord& record = change_format(format_index, kFormatBorder);
  borders_.release(std::exchange(record.border, number));
}

void Styles::set_fill(std::uint32_t format_index, const Fill& fill) {
  const std::uint32_t number = fills_.take(fill);
  FormatRecord& record = change_format(format_index, kFormatFill);
  fills_.release(std::exchange(record.fill, number));
}

void Styles::take_looks(FormatRecord& format, const Border& border, const Fill& fill) {
  format.border = borders_.take(border);
  try {
    format.fill = fills_.take(fill);
  } catch (...) {
    borders_.release(format.border);
    throw;
  }
}

std::uint32_t Styles::push_copy(FormatRecord format) {
  formats_.push_back(format);
  borders_.again(format.border);
  fills_.again(format.fill);
  return format_count() - 1;
}

std::optional<std::uint32_t> Styles::add_format() {
  if (formats_.size() >= limits.formats) return std::nullopt;
  const std::uint32_t added = push_copy({});
  changed_ = true;
  return added;
}

std::optional<std::uint32_t> Styles::add_format(std::uint32_t init) {
  if (formats_.size() >= limits.formats) return std::nullopt;
  const std::uint32_t added = push_copy(format(init));
  changed_ = true;
  return added;
}

// Short memory must leave the lists as they were: room for all is there before the first grows.
std::optional<std::uint32_t> Styles::add_format(const Styles& other, std::uint32_t init) {
  if (formats_.size() >= limits.formats || fonts_.size() >= limits.fonts) return std::nullopt;
  make_room(formats_);
  make_room(fonts_);
  FontRecord font = imported(other.font(other.font_of(init)), other);
  FormatRecord made = other.format(init);
  const auto number = import_number_format(other, made.number_format);
  if (!number) return std::nullopt;
  take_looks(made, imported(other.border_of(init), other), imported(other.fill_of(init), other));
  made.number_format = *number;
  made.font = font_count();
  made.model = kNoModel;
  fonts_.push_back(std::move(font));
  formats_.push_back(made);
  changed_ = true;
  return format_count() - 1;
}

std::optional<std::uint32_t> Styles::add_font(std::uint32_t init) {
  if (fonts_.size() >= limits.fonts) return std::nullopt;
  FontRecord copy = font(init);
  fonts_.push_back(std::move(copy));
  changed_ = true;
  return font_count() - 1;
}

std::optional<std::uint32_t> Styles::add_font(const Styles& other, std::uint32_t init) {
  if (fonts_.size() >= limits.fonts) return std::nullopt;
  fonts_.push_back(imported(other.font(init), other));
  changed_ = true;
  return font_count() - 1;
}

FontRecord Styles::imported(FontRecord font, const Styles& other) const {
  font.color = imported(font.color, other);
  font.model = kNoModel;
  return font;
}

Border Styles::imported(Border border, const Styles& other) const {
  for (BorderSide* side :
       {&border.left, &border.right, &border.top, &border.bottom, &border.diagonal})
    side->color = imported(side->color, other);
  return border;
}

Fill Styles::imported(Fill fill, const Styles& other) const {
  fill.foreground = imported(fill.foreground, other);
  fill.background = imported(fill.background, other);
  fill.carried = 0;
  return fill;
}

// An index or theme number means here what it meant there only when the tables are the same.
Color Styles::imported(const Color& color, const Styles& other) const {
  const bool is_system = color.kind == ColorKind::kIndexed && color.value >= 64;
  const bool is_entry = color.kind == ColorKind::kIndexed || color.kind == ColorKind::kTheme;
  if (!is_entry || is_system || colors == other.colors) return color;
  return Color::rgb(rgb_of(color, other.colors));
}

std::optional<std::uint32_t> Styles::import_number_format(const Styles& other, std::uint32_t id) {
  const auto defined = other.numbers_.find(id);
  if (defined != other.numbers_.end()) return add_number_format(defined->second.code);
  // A built-in id that this book has given another meaning.
  if (numbers_.contains(id)) {
    const std::string_view code = built_in_number_format(id);
    if (!code.empty()) return add_number_format(code);
  }
  return id;
}

std::optional<std::uint32_t> Styles::add_number_format(std::string_view code) {
  const auto known = numbers_by_code_.find(code);
  if (known != numbers_by_code_.end()) return known->second;
  const std::optional<std::uint32_t> id = free_number();
  if (!id) return std::nullopt;
  define_number_format(*id, code);
  changed_ = true;
  return id;
}

std::optional<std::uint32_t> Styles::free_number() const {
  const auto custom = numbers_.lower_bound(kFirstCustomNumber);
  const auto redefined = static_cast<std::size_t>(std::distance(numbers_.begin(), custom));
  const std::size_t count = numbers_.size() - redefined;
  if (count >= limits.number_formats) return std::nullopt;
  if (count == 0) return kFirstCustomNumber;
  const std::uint32_t highest = std::prev(numbers_.end())->first;
  if (highest < limits.last_number_format) return highest + 1;
  // A file that numbers to the end may have left gaps.
  std::uint32_t next = kFirstCustomNumber;
  for (auto at = custom; at != numbers_.end() && at->first == next; ++at) ++next;
  return next <= limits.last_number_format ? std::optional(next) : std::nullopt;
}

std::string_view Styles::code_of(std::uint32_t id) const {
  const auto found = numbers_.find(id);
  return found == numbers_.end() ? built_in_number_format(id) : found->second.code;
}

bool Styles::is_number_format(std::uint32_t id) const { return id <= 49 || numbers_.contains(id); }

std::vector<std::uint32_t> Styles::number_formats() const {
  std::vector<std::uint32_t> ids;
  ids.reserve(numbers_.size());
  for (const auto& [id, format] : numbers_) ids.push_back(id);
  return ids;
}

bool Styles::is_date(std::uint32_t format_index) const {
  const std::uint32_t id = format(format_index).number_format;
  const auto found = numbers_.find(id);
  return found == numbers_.end() ? is_built_in_date(id) : found->second.first_is_date;
}

bool Styles::is_date(std::uint32_t format_index, double value) const {
  const std::uint32_t id = format(format_index).number_format;
  const auto found = numbers_.find(id);
  if (found == numbers_.end()) return is_built_in_date(id);
  const NumberFormat& number = found->second;
  if (number.dates == Dates::kByValue) return is_date_format(number.code, value);
  return number.dates == Dates::kAlways;
}

void Styles::begin_file_entries() {
  fonts_.clear();
  formats_.clear();
  borders_ = {};
  fills_ = {};
  numbers_.clear();
  numbers_by_code_.clear();
  colors = ColorTable();
}

void Styles::append_font(FontRecord font) {
  font.model = font_count();
  fonts_.push_back(std::move(font));
}

void Styles::append_format(FormatRecord format, const Border& border, const Fill& fill) {
  make_room(formats_);
  format.model = format_count();
  take_looks(format, border, fill);
  formats_.push_back(format);
}

void Styles::define_number_format(std::uint32_t id, std::string_view code) {
  if (code.empty() && id < kFirstCustomNumber) return;  // says nothing in place of the usual code
  NumberFormat made;
  made.code = code;
  made.first_is_date = is_date_format(code);
  if (is_date_by_value(code)) made.dates = Dates::kByValue;
  else if (made.first_is_date) made.dates = Dates::kAlways;
  std::map<std::uint32_t, NumberFormat> entry;
  entry.emplace(id, std::move(made));
  // A built-in date changes with the system: its text is no name for a code that stays.
  if (id >= kFirstCustomNumber) numbers_by_code_.try_emplace(std::string(code), id);
  // A damaged file may define an id twice: the later code is the one it means.
  if (const auto former = numbers_.find(id); former != numbers_.end()) {
    const auto name = numbers_by_code_.find(former->second.code);
    const bool is_named = name != numbers_by_code_.end() && name->second == id;
    if (is_named && former->second.code != code) numbers_by_code_.erase(name);
    numbers_.erase(former);
  }
  numbers_.merge(entry);
}

void Styles::end_of_file_entries() {
  fonts_from_file_ = font_count();
  formats_from_file_ = format_count();
  if (fonts_.empty()) fonts_.push_back(default_font_);
  if (formats_.empty()) push_copy({});
  for (FormatRecord& format : formats_)
    if (format.font >= fonts_.size()) format.font = 0;
  changed_ = false;
}

}  // namespace engine
