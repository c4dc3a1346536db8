#include "engine/workbook/workbook.h"

#include <algorithm>
#include <cassert>

#include "engine/text/fold.h"

namespace engine {

namespace {

struct ClassicError {
  std::uint32_t number;
  std::string_view text;
};
constexpr ClassicError kClassicErrors[] = {
    {0, "#NULL!"},  {7, "#DIV/0!"}, {15, "#VALUE!"}, {23, "#REF!"},
    {29, "#NAME?"}, {36, "#NUM!"},  {42, "#N/A"},
};

}  // namespace

Workbook::Workbook(const Limits& format_limits) : limits(format_limits), names(format_limits.grid) {
  styles.limits = limits.styles;
}

Sheet* Workbook::find_sheet(std::string_view name) const {
  for (Sheet* sheet : last_found_)
    if (sheet && sheet->name() == name) return sheet;
  const std::string folded = fold_case(name);
  const auto found = sheet_names_.lower_bound(std::string_view(folded));
  if (found == sheet_names_.end() || (*found)->folded_name() != folded) return nullptr;
  last_found_ = {*found, last_found_[0]};
  return *found;
}

std::size_t Workbook::position(const Sheet& sheet) const {
  const auto found = std::ranges::find(sheets_, &sheet, &std::unique_ptr<Sheet>::get);
  assert(found != sheets_.end());
  return static_cast<std::size_t>(found - sheets_.begin());
}

void Workbook::add_sheet(std::unique_ptr<Sheet> sheet) {
  make_room_for_sheet();
  SheetNames its_name = {sheet.get()};
  insert_sheet(sheets_.size(), std::move(sheet), std::move(its_name));
}

void Workbook::make_room_for_sheet() {
  if (sheets_.size() == sheets_.capacity()) sheets_.reserve(2 * sheets_.size() + 1);
}

void Workbook::insert_sheet(std::size_t position, std::unique_ptr<Sheet> sheet,
                            SheetNames its_name) noexcept {
  sheet_names_.merge(its_name);
  sheets_.insert(sheets_.begin() + static_cast<std::ptrdiff_t>(position), std::move(sheet));
}

std::unique_ptr<Sheet> Workbook::remove_sheet(std::size_t position) noexcept {
  const auto at = sheets_.begin() + static_cast<std::ptrdiff_t>(position);
  last_found_ = {};
  sheet_names_.erase(place_in_names(**at));
  std::unique_ptr<Sheet> removed = std::move(*at);
  sheets_.erase(at);
  return removed;
}

void Workbook::move_sheet(std::size_t from, std::size_t to) noexcept {
  const auto at = [&](std::size_t i) { return sheets_.begin() + static_cast<std::ptrdiff_t>(i); };
  if (from < to) std::rotate(at(from), at(from + 1), at(to + 1));
  else std::rotate(at(to), at(from), at(from + 1));
}

void Workbook::rename_sheet(Sheet& sheet, std::string name, std::string folded_name) noexcept {
  last_found_ = {};
  auto its_name = sheet_names_.extract(place_in_names(sheet));
  sheet.name_.swap(name);
  sheet.folded_name_.swap(folded_name);
  names.forget_ranges();
  sheet_names_.insert(std::move(its_name));
}

SheetNames::iterator Workbook::place_in_names(const Sheet& sheet) const {
  auto at = sheet_names_.lower_bound(std::string_view(sheet.folded_name()));
  while (*at != &sheet) ++at;
  return at;
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
