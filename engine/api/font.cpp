#include "engine/api/font.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "engine/api/messages.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"
#include "engine/workbook/default_font.h"

namespace engine::api {

namespace {

constexpr int kUnderlines[] = {libxl::UnderlineNone, libxl::UnderlineSingle, libxl::UnderlineDouble,
                               libxl::UnderlineSingleAccounting, libxl::UnderlineDoubleAccounting};

}  // namespace

int FontObject::size() const {
  return run(0, [&] { return static_cast<int>(std::lround(record().size)); });
}

void FontObject::setSize(int size) {
  run([&] {
    if (size < 1 || size > kMaxFontSize)
      return book_.refuse(messages::out_of_range("font size", size, 1, kMaxFontSize));
    if (index_ == 0) change_default_font(book_.workbook(), book_.document(), {{}, size});
    else change(kFontSize).size = size;
  });
}

bool FontObject::italic() const {
  return run(false, [&] { return record().italic; });
}

void FontObject::setItalic(bool italic) {
  run([&] { change(kFontItalic).italic = italic; });
}

bool FontObject::strikeOut() const {
  return run(false, [&] { return record().strike_out; });
}

void FontObject::setStrikeOut(bool strikeOut) {
  run([&] { change(kFontStrikeOut).strike_out = strikeOut; });
}

libxl::Color FontObject::color() const {
  return run(libxl::ColorAuto, [&] {
    return static_cast<libxl::Color>(number_of_color(
        record().color, kAutomaticNumber, book_.rgb_mode(), book_.workbook().styles.colors));
  });
}

void FontObject::setColor(libxl::Color color) {
  run([&] {
    const auto stored = color_of_number(color, book_.rgb_mode());
    if (!stored) return book_.refuse(messages::unknown("colour", color));
    change(kFontColor).color = *stored;
  });
}

bool FontObject::bold() const {
  return run(false, [&] { return record().bold; });
}

void FontObject::setBold(bool bold) {
  run([&] { change(kFontBold).bold = bold; });
}

libxl::Script FontObject::script() const {
  return run(libxl::ScriptNormal, [&] { return static_cast<libxl::Script>(record().script); });
}

void FontObject::setScript(libxl::Script script) {
  run([&] {
    if (script < libxl::ScriptNormal || script > libxl::ScriptSub)
      return book_.refuse(messages::out_of_range("script", script, 0, libxl::ScriptSub));
    change(kFontScript).script = static_cast<std::uint8_t>(script);
  });
}

libxl::Underline FontObject::underline() const {
  return run(libxl::UnderlineNone,
             [&] { return static_cast<libxl::Underline>(record().underline); });
}

void FontObject::setUnderline(libxl::Underline underline) {
  run([&] {
    if (std::ranges::find(kUnderlines, underline) == std::end(kUnderlines))
      return book_.refuse(messages::unknown("underline", underline));
    change(kFontUnderline).underline = static_cast<std::uint8_t>(underline);
  });
}

const wchar_t* FontObject::name() const {
  return run(nullptr, [&] { return book_.give(record().name); });
}

// A name that does not fit is an answer, not a refusal: the caller gets false and no message.
bool FontObject::setName(const wchar_t* name) {
  return run(false, [&] {
    std::string text = to_utf8(name);
    if (text.empty() || utf16_length(text) > kMaxFontName) return false;
    if (index_ == 0) change_default_font(book_.workbook(), book_.document(), {std::move(text), {}});
    else change(kFontName).name = std::move(text);
    return true;
  });
}

}  // namespace engine::api
