// Operations of a sheet on its filter and its tables.
#include "engine/api/auto_filter.h"
#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"
#include "engine/workbook/filter_operations.h"

namespace engine::api {

libxl::AutoFilter* SheetObject::autoFilter() {
  return run(nullptr, [&]() -> libxl::AutoFilter* {
    if (!filter_) filter_ = std::make_unique<AutoFilterObject>(book_, *this);
    return filter_.get();
  });
}

// Rows that a partial load left out cannot be judged, nor shown.
bool SheetObject::check_filter_rows() const {
  const CellRange rows = data_rows(*contents().filter.range);
  return check_loaded_rows(rows.row_first, rows.row_last);
}

// Formulas may count the rows that are seen.
void SheetObject::applyFilter() {
  run([&] {
    if (!contents().filter.range) return book_.refuse(messages::no_filter());
    if (!check_filter_rows()) return;
    if (apply_filter(book_.workbook(), *sheet_)) book_.contents().values_changed = true;
  });
}

void SheetObject::removeFilter() {
  run([&] {
    if (!contents().filter.range || !check_filter_rows()) return;
    if (remove_filter(book_.workbook(), *sheet_)) book_.contents().values_changed = true;
    if (filter_) filter_->drop_columns();
  });
}

int SheetObject::tableSize() const {
  return run(0, [&] {
    return static_cast<int>(book_.document().tables(book_.workbook(), *sheet_).size());
  });
}

const wchar_t* SheetObject::table(int index, int* rowFirst, int* rowLast, int* colFirst,
                                  int* colLast, int* headerRowCount, int* totalsRowCount) const {
  return run(nullptr, [&]() -> const wchar_t* {
    const std::vector<Table> tables = book_.document().tables(book_.workbook(), *sheet_);
    if (!book_.check_index("table", index, tables.size())) return nullptr;
    const Table& table = tables[static_cast<std::size_t>(index)];
    const wchar_t* name = book_.give(table.name);
    give_range(table.cells, rowFirst, rowLast, colFirst, colLast);
    give(headerRowCount, table.header_rows);
    give(totalsRowCount, table.totals_rows);
    return name;
  });
}

}  // namespace engine::api
