#include "engine/xls/older_texts.h"

#include "engine/package/file_error.h"
#include "engine/package/little_endian.h"
#include "engine/text/utf16.h"
#include "engine/xls/characters.h"
#include "engine/xls/record_reader.h"

namespace engine::xls {

namespace {

constexpr unsigned kMacintosh = 10000;
constexpr unsigned kWindows = 1252;
constexpr unsigned kUtf16 = 1200;

unsigned page_of(unsigned number) {
  constexpr unsigned kOlderMacintosh = 0x8000;
  constexpr unsigned kOlderWindows = 0x8001;
  if (number == kOlderMacintosh) return kMacintosh;
  return number == kOlderWindows ? kWindows : number;
}

std::string behind_option(const Characters& characters) {
  return std::string(1, characters.wide() ? '\1' : '\0').append(characters.bytes());
}

}  // namespace

void OlderTexts::use_code_page(unsigned number) {
  page_.reset();
  if (number == kUtf16) return;
  page_ = std::make_unique<system::CodePage>(page_of(number));
  if (!page_->is_known())
    throw package::FileError("is written in code page " + std::to_string(number) +
                             ", which this system does not know");
}

std::string OlderTexts::utf8(std::string_view bytes) const {
  if (is_ascii(bytes) && (page_ || bytes.find('\0') == std::string_view::npos))
    return std::string(bytes);
  std::string text;
  if (page_) page_->append(text, bytes);
  else append_utf16(text, bytes);
  return text;
}

std::string OlderTexts::characters(std::string_view bytes) const {
  const std::string text = utf8(bytes);
  return behind_option(Characters(text));
}

std::string OlderTexts::short_text(std::string_view bytes) const {
  const std::string text = utf8(bytes);
  const Characters characters(text);
  return std::string(1, static_cast<char>(characters.count())) + behind_option(characters);
}

std::string OlderTexts::long_text(std::string_view bytes) const {
  const std::string text = utf8(bytes);
  const Characters characters(text);
  std::string made;
  package::put16(made, characters.count());
  return made + behind_option(characters);
}

}  // namespace engine::xls
