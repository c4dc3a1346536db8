#include "engine/workbook/filter_operations.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/workbook/filter_matcher.h"
#include "engine/workbook/print_names.h"

namespace engine {

namespace {

constexpr const char* kName = "_xlnm._FilterDatabase";

// Which of the data rows of a filter shall be hidden.
class HiddenRows {
 public:
  explicit HiddenRows(const CellRange& filter) : first_(filter.row_first + 1) {
    hidden_.resize(static_cast<std::size_t>(filter.row_last - filter.row_first));
  }

  int first() const { return first_; }
  int end() const { return first_ + static_cast<int>(hidden_.size()); }
  void hide(int row) { hidden_[place(row)] = true; }
  bool any() const { return std::ranges::find(hidden_, true) != hidden_.end(); }

  // Makes what rows need to be told apart. Tells whether some will change.
  bool prepare(SheetContents& sheet) const {
    bool changes = false;
    for (int row = first_; row < end(); ++row) {
      if (sheet.is_hidden(row) == hidden_[place(row)]) continue;
      sheet.properties_at(row);
      changes = true;
    }
    return changes;
  }

  void apply(SheetContents& sheet) const noexcept {
    for (int row = first_; row < end(); ++row)
      if (sheet.is_hidden(row) != hidden_[place(row)])
        sheet.properties_at(row).hidden = hidden_[place(row)];
  }

 private:
  std::size_t place(int row) const { return static_cast<std::size_t>(row - first_); }

  int first_;
  std::vector<bool> hidden_;
};

}  // namespace

std::optional<CellRange> named_filter_range(const Workbook& book, const Sheet& sheet) {
  const std::vector<CellRange> ranges = ranges_of(book, sheet, kName);
  return ranges.size() == 1 ? std::optional(ranges.front()) : std::nullopt;
}

void set_filter_range(Workbook& book, Sheet& sheet, const CellRange& range) {
  AutoFilter filter = with_range(sheet.contents().filter, range);
  std::string definition = formula::absolute_range_text(sheet.name(), range);
  if (const DefinedName* name = book.names.find(kName, &sheet))
    book.names.define(*name, std::move(definition));
  else book.names.add({kName, std::move(definition), &sheet, true, ""});
  if (sheet.contents().filter != filter) sheet.change().filter = std::move(filter);
}

bool apply_filter(const Workbook& book, Sheet& sheet) {
  const SheetContents& contents = sheet.contents();
  AutoFilter filter = contents.filter;
  HiddenRows rows(*filter.range);
  std::vector<FilterMatcher> matchers;
  for (ColumnFilter& one : filter.columns) {
    const FilterMatcher& matcher = matchers.emplace_back(book, contents, one, *filter.range);
    one.criterion.last_shown = matcher.last_shown();
  }
  for (int row = rows.first(); row < rows.end(); ++row) {
    const bool is_shown = std::ranges::all_of(matchers, [&](const FilterMatcher& one) {
      return one.is_carried() ? !contents.is_hidden(row)
                              : one.accepts(contents.cells.find(row, one.column()));
    });
    if (!is_shown) rows.hide(row);
  }
  const bool filtered = rows.any();
  const bool rows_change = rows.prepare(sheet.spare());
  if (!rows_change && filtered == contents.filtered && filter == contents.filter) return false;
  SheetContents& changed = sheet.change();
  rows.apply(changed);
  changed.filter = std::move(filter);
  changed.filtered = filtered;
  return rows_change;
}

bool remove_filter(Workbook& book, Sheet& sheet) {
  if (!sheet.contents().filter.range) return false;
  const HiddenRows rows(*sheet.contents().filter.range);
  const bool rows_change = rows.prepare(sheet.spare());
  if (const DefinedName* name = book.names.find(kName, &sheet)) book.names.remove(*name);
  SheetContents& changed = sheet.change();
  rows.apply(changed);
  changed.filter = {};
  changed.filtered = false;
  return rows_change;
}

}  // namespace engine
