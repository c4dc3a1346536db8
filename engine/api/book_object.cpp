#include "engine/api/book_object.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "engine/api/font.h"
#include "engine/api/format.h"
#include "engine/api/locale.h"
#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"
#include "engine/workbook/color.h"
#include "engine/workbook/dates.h"
#include "engine/workbook/default_font.h"
#include "engine/workbook/number_format.h"
#include "engine/xls/codec.h"
#include "engine/xlsx/codec.h"

namespace engine::api {

namespace {

struct TimeLimit {
  std::string_view name;
  int DateTime::*field;
  int last;
};
constexpr TimeLimit kTimeLimits[] = {
    {"hour", &DateTime::hour, 23},
    {"minute", &DateTime::minute, 59},
    {"second", &DateTime::second, 59},
    {"millisecond", &DateTime::millisecond, 999},
};

}  // namespace

// Formats and fonts.

libxl::Format* BookObject::addFormat(libxl::Format* init) {
  return run(nullptr, [&]() -> libxl::Format* {
    Styles& styles = book_.workbook().styles;
    book_.prepare_format_object();
    std::optional<std::uint32_t> added;
    if (!init) {
      added = styles.add_format();
    } else {
      const auto& model = static_cast<const FormatObject&>(*init);
      if (model.detached()) return book_.refuse(nullptr, messages::gone("format"));
      added = &model.book() == &book_
                  ? styles.add_format(model.index())
                  : styles.add_format(model.book().workbook().styles, model.index());
    }
    if (!added) return book_.refuse(nullptr, messages::too_many("formats", styles.limits.formats));
    return book_.format_object(*added);
  });
}

libxl::Font* BookObject::addFont(libxl::Font* init) {
  return run(nullptr, [&]() -> libxl::Font* {
    Styles& styles = book_.workbook().styles;
    book_.prepare_font_object();
    std::optional<std::uint32_t> added;
    if (!init) {
      added = styles.add_font();
    } else {
      const auto& model = static_cast<const FontObject&>(*init);
      if (model.detached()) return book_.refuse(nullptr, messages::gone("font"));
      added = &model.book() == &book_
                  ? styles.add_font(model.index())
                  : styles.add_font(model.book().workbook().styles, model.index());
    }
    if (!added) return book_.refuse(nullptr, messages::too_many("fonts", styles.limits.fonts));
    return book_.font_object(*added);
  });
}

int BookObject::addCustomNumFormat(const wchar_t* numFormat) {
  return run(0, [&] {
    Styles& styles = book_.workbook().styles;
    const std::string code = to_utf8(numFormat);
    if (code.empty()) return book_.refuse(0, messages::empty("number format"));
    const std::size_t length = utf16_length(code);
    if (length > kMaxNumberFormatLength)
      return book_.refuse(0, messages::too_long("number format", length, kMaxNumberFormatLength));
    if (!is_valid_number_format(code))
      return book_.refuse(0, messages::invalid_number_format(code));
    const auto id = styles.add_number_format(code);
    if (!id)
      return book_.refuse(0, messages::too_many("number formats", styles.limits.number_formats));
    return static_cast<int>(*id);
  });
}

const wchar_t* BookObject::customNumFormat(int fmt) {
  return run(nullptr, [&]() -> const wchar_t* {
    std::string_view code;
    if (fmt >= 0) code = book_.workbook().styles.code_of(static_cast<std::uint32_t>(fmt));
    if (code.empty()) return book_.refuse(nullptr, messages::unknown("number format", fmt));
    return book_.give(code);
  });
}

libxl::Format* BookObject::format(int index) {
  return run(nullptr, [&]() -> libxl::Format* {
    if (!book_.check_index("format", index, book_.workbook().styles.format_count())) return nullptr;
    return book_.format_object(static_cast<std::uint32_t>(index));
  });
}

int BookObject::formatSize() {
  return run(0, [&] { return static_cast<int>(book_.workbook().styles.format_count()); });
}

libxl::Font* BookObject::font(int index) {
  return run(nullptr, [&]() -> libxl::Font* {
    if (!book_.check_index("font", index, book_.workbook().styles.font_count())) return nullptr;
    return book_.font_object(static_cast<std::uint32_t>(index));
  });
}

int BookObject::fontSize() {
  return run(0, [&] { return static_cast<int>(book_.workbook().styles.font_count()); });
}

const wchar_t* BookObject::defaultFont(int* fontSize) {
  return run(nullptr, [&] {
    const FontRecord& font = book_.workbook().styles.font(0);
    const wchar_t* name = book_.give(font.name);
    give(fontSize, static_cast<int>(std::lround(font.size)));
    return name;
  });
}

void BookObject::setDefaultFont(const wchar_t* fontName, int fontSize) {
  run([&] {
    std::string name = to_utf8(fontName);
    if (name.empty()) return book_.refuse(messages::empty("font name"));
    const std::size_t length = utf16_length(name);
    if (length > kMaxFontName)
      return book_.refuse(messages::too_long("font name", length, kMaxFontName));
    if (fontSize < 1 || fontSize > kMaxFontSize)
      return book_.refuse(messages::out_of_range("font size", fontSize, 1, kMaxFontSize));
    change_default_font(book_.workbook(), book_.document(), {std::move(name), fontSize});
  });
}

// Dates and colours. They and the colour mode work on a book of which only the information was
// loaded.

double BookObject::datePack(int year, int month, int day, int hour, int min, int sec,
                            int msec) const {
  return book_.run_always(0.0, [&] {
    const bool date1904 = book_.workbook().date1904;
    if (!serial_of_date({year, month, day}, date1904))
      return book_.refuse(0.0, messages::invalid_date(year, month, day));
    const DateTime time{year, month, day, hour, min, sec, msec};
    for (const TimeLimit& limit : kTimeLimits) {
      const int value = time.*limit.field;
      if (value < 0 || value > limit.last)
        return book_.refuse(0.0, messages::out_of_range(limit.name, value, 0, limit.last));
    }
    return serial_of_date(time, date1904).value_or(0);
  });
}

bool BookObject::dateUnpack(double value, int* year, int* month, int* day, int* hour, int* min,
                            int* sec, int* msec) const {
  return book_.run_always(false, [&] {
    const auto date = date_of_serial(value, book_.workbook().date1904);
    if (!date) return false;
    give(year, date->year);
    give(month, date->month);
    give(day, date->day);
    give(hour, date->hour);
    give(min, date->minute);
    give(sec, date->second);
    give(msec, date->millisecond);
    return true;
  });
}

libxl::Color BookObject::colorPack(int red, int green, int blue) {
  return book_.run_always(libxl::Color(), [&] {
    const auto check = [&](std::string_view name, int value) {
      return (value >= 0 && value <= 255) ||
             book_.refuse(false, messages::out_of_range(name, value, 0, 255));
    };
    if (!check("red", red) || !check("green", green) || !check("blue", blue)) return libxl::Color();
    const auto rgb = static_cast<std::uint32_t>(red * 65536 + green * 256 + blue);
    const int number = book_.rgb_mode()
                           ? rgb_number(rgb)
                           : nearest_index(rgb, book_.workbook().styles.colors.palette);
    return static_cast<libxl::Color>(number);
  });
}

void BookObject::colorUnpack(libxl::Color color, int* red, int* green, int* blue) {
  book_.run_always([&] {
    const auto known = color_of_number(color, book_.rgb_mode());
    if (!known) return book_.refuse(messages::unknown("colour", color));
    const auto rgb = static_cast<int>(rgb_of(*known, book_.workbook().styles.colors));
    give(red, rgb >> 16);
    give(green, rgb >> 8 & 0xFF);
    give(blue, rgb & 0xFF);
  });
}

// Settings.

bool BookObject::rgbMode() const {
  return book_.run_always(false, [&] { return book_.rgb_mode(); });
}

void BookObject::setRgbMode(bool rgbMode) {
  book_.run_always([&] { book_.set_rgb_mode(rgbMode); });
}

bool BookObject::refR1C1() const {
  return book_.run_always(false, [&] { return book_.workbook().r1c1; });
}

void BookObject::setRefR1C1(bool refR1C1) {
  run([&] { book_.workbook().r1c1 = refR1C1; });
}

int BookObject::biffVersion() const {
  return book_.run_always(0, [&] { return book_.codec().biff_version; });
}

bool BookObject::isDate1904() const {
  return book_.run_always(false, [&] { return book_.workbook().date1904; });
}

void BookObject::setDate1904(bool date1904) {
  run([&] { book_.workbook().date1904 = date1904; });
}

bool BookObject::isTemplate() const {
  return book_.run_always(false, [&] { return book_.workbook().is_template; });
}

void BookObject::setTemplate(bool tmpl) {
  run([&] {
    book_.workbook().is_template = tmpl;
    book_.contents().template_from_file = false;
  });
}

bool BookObject::setLocale(const char* locale) {
  return book_.run_always(false, [&] { return locale && find_number_signs(locale); });
}

}  // namespace engine::api

namespace {

libxl::Book* create_book(const engine::Codec& codec) {
  try {
    return new engine::api::BookObject(codec);
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace

[[gnu::visibility("default")]] libxl::Book* xlCreateBookW() {
  return create_book(engine::xls::kCodec);
}

[[gnu::visibility("default")]] libxl::Book* xlCreateXMLBookW() {
  return create_book(engine::xlsx::kCodec);
}
