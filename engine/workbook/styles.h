// Fonts, number formats and cell formats of a book, whatever file they came from.
//
// The tables only grow while a book is open, so that the number of an entry stays true: cells of
// sheets that nobody has read refer to entries by number. Entries are changed in place and know
// which of their aspects were changed, because a codec leaves the rest of what the file says about
// an entry as it stands. An entry made as a copy names the file's entry that it descends from, so
// that a codec can give it what the engine has no model of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/color.h"
#include "engine/workbook/limits.h"
#include "engine/workbook/shared_values.h"

namespace engine {

inline constexpr std::uint32_t kNoModel = UINT32_MAX;

// Aspects of a font that can be changed; a set of them is their sum.
enum FontAspect : std::uint16_t {
  kFontName = 1,
  kFontSize = 2,
  kFontColor = 4,
  kFontBold = 8,
  kFontItalic = 16,
  kFontStrikeOut = 32,
  kFontScript = 64,
  kFontUnderline = 128,
};

inline constexpr int kMaxFontSize = 409;         // points
inline constexpr std::size_t kMaxFontName = 31;  // UTF-16 code units

struct FontRecord {
  std::string name = "Calibri";
  double size = 11;            // points
  Color color;                 // absent is automatic
  std::uint8_t script = 0;     // 0 normal, 1 superscript, 2 subscript
  std::uint8_t underline = 0;  // 0 none, 1 single, 2 double, 33 and 34 the same for accounting
  bool bold = false;
  bool italic = false;
  bool strike_out = false;

  std::uint16_t changed = 0;       // aspects that differ from the file's entry
  std::uint32_t model = kNoModel;  // the file's entry that this one is, or was copied from
};

enum FormatAspect : std::uint16_t {
  kFormatFont = 1,
  kFormatNumber = 2,
  kFormatAlignment = 4,
  kFormatBorder = 8,
  kFormatFill = 16,
  kFormatProtection = 32,
};

struct Alignment {
  std::uint8_t horizontal = 0;  // 0 general, 1 left, 2 center, 3 right, 4 fill, 5 justify, …
  std::uint8_t vertical = 2;    // 0 top, 1 center, 2 bottom, 3 justify, 4 distributed
  std::uint8_t rotation = 0;    // 0..90 up, 91..180 down, 255 stacked
  std::uint8_t indent = 0;
  bool wrap = false;
  bool shrink_to_fit = false;

  friend bool operator==(const Alignment&, const Alignment&) = default;
};

struct BorderSide {
  std::uint8_t style = 0;  // 0 none, 1 thin, …, 13
  Color color;

  friend bool operator==(const BorderSide&, const BorderSide&) = default;
};

struct Border {
  BorderSide left;
  BorderSide right;
  BorderSide top;
  BorderSide bottom;
  BorderSide diagonal;
  std::uint8_t diagonals = 0;  // 1 down, 2 up, 3 both

  friend bool operator==(const Border&, const Border&) = default;
};

struct Fill {
  std::uint8_t pattern = 0;  // 0 none, 1 solid, …, 18
  Color foreground;
  Color background;
  // A look beyond patterns that the codec carries, by its own number; 0 is none. Whoever sets
  // anything of the fill sets it to 0.
  std::uint32_t carried = 0;

  friend bool operator==(const Fill&, const Fill&) = default;
};

// A book may have tens of thousands of formats, of which few differ in their borders or fills.
struct FormatRecord {
  std::uint32_t font = 0;
  std::uint32_t number_format = 0;
  std::uint32_t border = 0;  // numbers that Styles gives out: set_border() and set_fill()
  std::uint32_t fill = 0;
  Alignment alignment;
  bool locked = true;
  bool hidden = false;

  std::uint16_t changed = 0;
  std::uint32_t model = kNoModel;
};

struct LookHash {
  std::size_t operator()(const Border& border) const;
  std::size_t operator()(const Fill& fill) const;
};

class Styles {
 public:
  static constexpr std::uint32_t kFirstCustomNumber = 164;

  // A new book's: font 0 and format 0, which uses it.
  explicit Styles(FontRecord default_font = {});

  ColorTable colors;
  StyleLimits limits;

  std::uint32_t format_count() const { return static_cast<std::uint32_t>(formats_.size()); }
  std::uint32_t font_count() const { return static_cast<std::uint32_t>(fonts_.size()); }

  // An index beyond the list, as damaged files have them, gives entry 0.
  const FormatRecord& format(std::uint32_t index) const {
    return formats_[index < formats_.size() ? index : 0];
  }
  const FontRecord& font(std::uint32_t index) const {
    return fonts_[index < fonts_.size() ? index : 0];
  }
  std::uint32_t font_of(std::uint32_t format_index) const;

  // By their numbers in a format. Equal ones have equal numbers, and number 0 is the usual one.
  const Border& border(std::uint32_t number) const { return borders_[number]; }
  const Fill& fill(std::uint32_t number) const { return fills_[number]; }
  const Border& border_of(std::uint32_t format_index) const {
    return border(format(format_index).border);
  }
  const Fill& fill_of(std::uint32_t format_index) const { return fill(format(format_index).fill); }
  // The index must be in the list.
  void set_border(std::uint32_t format_index, const Border& border);
  void set_fill(std::uint32_t format_index, const Fill& fill);

  // The entry, to be changed by the caller in the aspects named. The index must be in the list.
  FormatRecord& change_format(std::uint32_t index, unsigned aspects);
  FontRecord& change_font(std::uint32_t index, unsigned aspects);

  // The index of a new entry: with default values, a copy of one of this book, a copy of one of
  // another book with its font, number format and colours. Nothing when the list is full.
  std::optional<std::uint32_t> add_format();
  std::optional<std::uint32_t> add_format(std::uint32_t init);
  std::optional<std::uint32_t> add_format(const Styles& other, std::uint32_t init);
  std::optional<std::uint32_t> add_font(std::uint32_t init = 0);
  std::optional<std::uint32_t> add_font(const Styles& other, std::uint32_t init);

  // The id of a custom number format: the one that has the text already, or the next one. Nothing
  // when there are too many. Whether the code is valid is the caller's question.
  std::optional<std::uint32_t> add_number_format(std::string_view code);
  // The code that the book gives the id, else the built-in one; empty when there is none.
  std::string_view code_of(std::uint32_t id) const;
  // Whether a format may use the id: 0..49, or one that the book defines.
  bool is_number_format(std::uint32_t id) const;
  // The ids that the book defines, ascending, and their codes.
  std::vector<std::uint32_t> number_formats() const;

  // Whether a number of this format is shown as a date or time. A format may have sections that
  // differ in it; then the value counts, or without one the first section.
  bool is_date(std::uint32_t format_index) const;
  bool is_date(std::uint32_t format_index, double value) const;

  // For a codec that reads a book: empties the tables, takes the file's entries in their order and
  // ends with end_of_file_entries(), which adds entry 0 where the file has none.
  void begin_file_entries();
  void append_font(FontRecord font);
  void append_format(FormatRecord format, const Border& border, const Fill& fill);
  void define_number_format(std::uint32_t id, std::string_view code);
  void end_of_file_entries();

  // How many entries came from the file; those behind were added.
  std::uint32_t formats_from_file() const { return formats_from_file_; }
  std::uint32_t fonts_from_file() const { return fonts_from_file_; }
  // True when an entry was added or changed since the file was read.
  bool changed() const { return changed_; }

 private:
  enum class Dates : std::uint8_t { kNever, kAlways, kByValue };

  struct NumberFormat {
    std::string code;
    Dates dates = Dates::kNever;
    bool first_is_date = false;
  };

  std::optional<std::uint32_t> free_number() const;
  std::optional<std::uint32_t> import_number_format(const Styles& other, std::uint32_t id);
  Color imported(const Color& color, const Styles& other) const;
  FontRecord imported(FontRecord font, const Styles& other) const;
  Border imported(Border border, const Styles& other) const;
  Fill imported(Fill fill, const Styles& other) const;
  // Gives the format a border and a fill of its own; its former ones are not its to give back.
  void take_looks(FormatRecord& format, const Border& border, const Fill& fill);
  std::uint32_t push_copy(FormatRecord format);

  std::vector<FontRecord> fonts_;
  std::vector<FormatRecord> formats_;
  SharedValues<Border, LookHash> borders_;
  SharedValues<Fill, LookHash> fills_;
  std::map<std::uint32_t, NumberFormat> numbers_;
  std::map<std::string, std::uint32_t, std::less<>> numbers_by_code_;
  FontRecord default_font_;
  std::uint32_t fonts_from_file_ = 0;
  std::uint32_t formats_from_file_ = 0;
  bool changed_ = false;
};

}  // namespace engine
