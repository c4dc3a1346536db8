#include "engine/workbook/workbook.h"

#include <algorithm>
#include <cassert>

#include "engine/text/fold.h"

namespace engine {

namespace {

constexpr std::size_t kSheetsLookedAt = 8;  // which is quicker than remembering where they are

struct ClassicError {
  std::uint32_t number;
  std::string_view text;
};
constexpr ClassicError kClassicErrors[] = {
    {0, "#NULL!"},  {7, "#DIV/0!"}, {15, "#VALUE!"}, {23, "#REF!"},
    {29, "#NAME?"}, {36, "#NUM!"},  {42, "#N/A"},
};

}  // namespace

Workbook::Workbook(const Limits& format_limits) : limits(format_limits) {
  styles.limits = limits.styles;
}

Sheet* Workbook::find_sheet(std::string_view name) const {
  const auto is_at = [&](std::size_t place) {
    return place < sheets.size() && equal_ignoring_case(sheets[place]->name, name);
  };
  const auto seen = places_seen_.find(name);
  if (seen != places_seen_.end() && is_at(seen->second)) return sheets[seen->second].get();
  for (std::size_t place = 0; place < sheets.size(); ++place) {
    if (!is_at(place)) continue;
    if (place >= kSheetsLookedAt) {
      if (places_seen_.size() > 2 * sheets.size()) places_seen_.clear();
      places_seen_.insert_or_assign(std::string(name), place);
    }
    return sheets[place].get();
  }
  return nullptr;
}

std::size_t Workbook::position(const Sheet& sheet) const {
  const auto found = std::ranges::find(sheets, &sheet, &std::unique_ptr<Sheet>::get);
  assert(found != sheets.end());
  return static_cast<std::size_t>(found - sheets.begin());
}

std::string_view error_text(const Workbook& book, std::uint32_t error) {
  if (error >= kNewError) {
    const std::uint32_t index = error - kNewError;
    return index < book.new_errors.size() ? book.new_errors[index] : "";
  }
  const auto* const found = std::ranges::find(kClassicErrors, error, &ClassicError::number);
  return found == std::end(kClassicErrors) ? std::string_view() : found->text;
}

std::uint32_t error_number(Workbook& book, std::string_view text) {
  const auto* const classic = std::ranges::find(kClassicErrors, text, &ClassicError::text);
  if (classic != std::end(kClassicErrors)) return classic->number;
  return kNewError + book.new_errors.add(text);
}

bool is_classic_error(int error) {
  return std::ranges::find(kClassicErrors, static_cast<std::uint32_t>(error),
                           &ClassicError::number) != std::end(kClassicErrors);
}

}  // namespace engine
