#include "engine/api/locale.h"

#include <algorithm>

namespace engine::api {

namespace {

constexpr std::string_view kNoBreak = "\u00A0";
constexpr std::string_view kNarrowNoBreak = "\u202F";
constexpr std::string_view kApostrophe = "\u2019";

constexpr NumberSigns kNeutral = {"", ".", ","};

constexpr NumberSigns kLanguages[] = {
    {"af", ",", kNoBreak}, {"ar", ".", ","},      {"az", ",", "."},
    {"be", ",", kNoBreak}, {"bg", ",", kNoBreak}, {"bn", ".", ","},
    {"bs", ",", "."},      {"ca", ",", "."},      {"cs", ",", kNoBreak},
    {"cy", ".", ","},      {"da", ",", "."},      {"de", ",", "."},
    {"el", ",", "."},      {"en", ".", ","},      {"es", ",", "."},
    {"et", ",", kNoBreak}, {"eu", ",", "."},      {"fa", ".", ","},
    {"fi", ",", kNoBreak}, {"fil", ".", ","},     {"fr", ",", kNarrowNoBreak},
    {"ga", ".", ","},      {"gl", ",", "."},      {"gsw", ".", kApostrophe},
    {"gu", ".", ","},      {"he", ".", ","},      {"hi", ".", ","},
    {"hr", ",", "."},      {"hu", ",", kNoBreak}, {"hy", ",", kNoBreak},
    {"id", ",", "."},      {"is", ",", "."},      {"it", ",", "."},
    {"ja", ".", ","},      {"ka", ",", kNoBreak}, {"kk", ",", kNoBreak},
    {"kn", ".", ","},      {"ko", ".", ","},      {"lb", ",", "."},
    {"lt", ",", kNoBreak}, {"lv", ",", kNoBreak}, {"mk", ",", "."},
    {"ml", ".", ","},      {"mr", ".", ","},      {"ms", ".", ","},
    {"mt", ".", ","},      {"nb", ",", kNoBreak}, {"nl", ",", "."},
    {"nn", ",", kNoBreak}, {"no", ",", kNoBreak}, {"pl", ",", kNoBreak},
    {"pt", ",", "."},      {"ro", ",", "."},      {"ru", ",", kNoBreak},
    {"sk", ",", kNoBreak}, {"sl", ",", "."},      {"sq", ",", kNoBreak},
    {"sr", ",", "."},      {"sv", ",", kNoBreak}, {"sw", ".", ","},
    {"ta", ".", ","},      {"te", ".", ","},      {"th", ".", ","},
    {"tr", ",", "."},      {"uk", ",", kNoBreak}, {"ur", ".", ","},
    {"uz", ",", kNoBreak}, {"vi", ",", "."},      {"zh", ".", ","},
};

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

const NumberSigns* find_number_signs(std::string_view locale) {
  const std::string_view name = locale.substr(0, locale.find('.'));
  if (name.empty() || name == "C" || name == "POSIX") return &kNeutral;
  const std::size_t border = name.find_first_of("_-");
  if (border != std::string_view::npos) {
    const std::string_view country = name.substr(border + 1);
    if (country.size() != 2 || !std::ranges::all_of(country, is_letter)) return nullptr;
  }
  const auto* const found =
      std::ranges::find(kLanguages, name.substr(0, border), &NumberSigns::language);
  return found == std::end(kLanguages) ? nullptr : found;
}

}  // namespace engine::api
