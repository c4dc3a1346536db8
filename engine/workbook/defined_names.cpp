#include "engine/workbook/defined_names.h"

#include <algorithm>

#include "engine/text/fold.h"
#include "engine/workbook/sheet.h"

namespace engine {

namespace {

// Names of this kind are part of the file format: print areas, filters.
constexpr std::string_view kBuiltIn = "_xlnm.";

bool is_built_in(std::string_view name) {
  return equal_ignoring_case(name.substr(0, kBuiltIn.size()), kBuiltIn);
}

}  // namespace

const DefinedName* DefinedNames::find(std::string_view name, const Sheet* scope) const {
  const Key key(scope, fold_case(name));
  const auto found = places_.lower_bound(key);
  return found != places_.end() && found->first == key ? &*found->second.at : nullptr;
}

std::vector<const DefinedName*> DefinedNames::of_scope(const Sheet& scope) const {
  std::vector<Ranged> numbered;
  for (auto at = places_.lower_bound({&scope, {}}); at != places_.end(); ++at) {
    if (at->first.first != &scope) break;
    numbered.emplace_back(at->second.number, &*at->second.at);
  }
  std::ranges::sort(numbered);
  std::vector<const DefinedName*> names;
  for (const auto& [number, name] : numbered) names.push_back(name);
  return names;
}

void DefinedNames::add(DefinedName name) {
  std::list<DefinedName> made;
  made.push_back(std::move(name));
  const DefinedName& added = made.front();
  const Place at{made.begin(), last_number_ + 1};
  const std::optional<std::string> sheet = sheet_of(added);
  const auto entered = places_.emplace(Key(added.scope, fold_case(added.name)), at);
  try {
    enter_range(sheet, at);
  } catch (...) {
    places_.erase(entered);
    throw;
  }
  ++last_number_;
  names_.splice(names_.end(), made);
}

// A range that stays on its sheet keeps its place there.
void DefinedNames::define(const DefinedName& name, std::string definition) {
  const Place at = place(name)->second;
  DefinedName made = name;
  made.definition.swap(definition);
  const std::optional<std::string> before = sheet_of(name);
  const std::optional<std::string> after = sheet_of(made);
  if (before != after) {
    enter_range(after, at);
    leave_range(before, at);
  }
  at.at->definition.swap(made.definition);
}

void DefinedNames::remove(const DefinedName& name) {
  const auto found = place(name);
  leave_range(sheet_of(name), found->second);
  names_.erase(found->second.at);
  places_.erase(found);
}

void DefinedNames::remove_scope(const Sheet& scope) noexcept {
  forget_ranges();
  for (auto at = places_.lower_bound({&scope, {}});
       at != places_.end() && at->first.first == &scope; at = places_.erase(at))
    names_.erase(at->second.at);
}

void DefinedNames::take(DefinedNames&& others) noexcept {
  forget_ranges();
  for (auto& [key, place] : others.places_) place.number += last_number_;
  last_number_ += others.last_number_;
  places_.merge(others.places_);
  names_.splice(names_.end(), others.names_);
}

void DefinedNames::exchange(const DefinedName& name, std::string& definition) noexcept {
  forget_ranges();
  const_cast<DefinedName&>(name).definition.swap(definition);
}

std::optional<formula::SheetRange> DefinedNames::range_of(const DefinedName& name) const {
  if (is_built_in(name.name)) return std::nullopt;
  auto ranges = formula::ranges_of_text(name.definition, grid_);
  if (ranges.size() != 1) return std::nullopt;
  // A reference without a sheet means the one that alone knows the name.
  if (ranges[0].sheet.empty() && name.scope) ranges[0].sheet = name.scope->name();
  if (ranges[0].sheet.empty()) return std::nullopt;
  return std::move(ranges[0]);
}

std::optional<CellRange> DefinedNames::range_of(const DefinedName& name, const Sheet& sheet) const {
  const auto range = range_of(name);
  if (!range || !equal_ignoring_case(range->sheet, sheet.name())) return std::nullopt;
  return range->range;
}

const std::deque<DefinedNames::Ranged>& DefinedNames::ranges_on(const Sheet& sheet) const {
  static const std::deque<Ranged> kNone;
  if (!ranges_) {
    std::unordered_map<std::string, std::deque<Ranged>> gathered;
    for (const auto& [key, place] : places_)
      if (const auto range = range_of(*place.at))
        gathered[fold_case(range->sheet)].emplace_back(place.number, &*place.at);
    for (auto& [name, ranges] : gathered) std::ranges::sort(ranges);
    ranges_ = std::move(gathered);
  }
  const auto found = ranges_->find(sheet.folded_name());
  return found == ranges_->end() ? kNone : found->second;
}

DefinedNames::Places::iterator DefinedNames::place(const DefinedName& name) {
  auto at = places_.lower_bound({name.scope, fold_case(name.name)});
  while (&*at->second.at != &name) ++at;
  return at;
}

std::optional<std::string> DefinedNames::sheet_of(const DefinedName& name) const {
  const auto range = ranges_ ? range_of(name) : std::nullopt;
  return range ? std::optional(fold_case(range->sheet)) : std::nullopt;
}

void DefinedNames::enter_range(const std::optional<std::string>& sheet, const Place& place) {
  if (!sheet) return;
  std::deque<Ranged>& ranges = (*ranges_)[*sheet];
  const Ranged ranged(place.number, &*place.at);
  ranges.insert(std::ranges::upper_bound(ranges, ranged), ranged);
}

void DefinedNames::leave_range(const std::optional<std::string>& sheet,
                               const Place& place) noexcept {
  if (!sheet) return;
  std::deque<Ranged>& ranges = ranges_->find(*sheet)->second;
  ranges.erase(std::ranges::lower_bound(ranges, Ranged(place.number, &*place.at)));
}

}  // namespace engine
