// What insertion or removal of rows or columns makes of the formulas of a book.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/adjust.h"
#include "engine/workbook/document.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/workbook/workbook.h"

namespace engine {

// New formulas, held until all are made. A formula that cells share goes on to be shared by those
// of them that the move leaves alike. Where ends of its ranges are cut, that may be each cell
// alone: a file names a long formula in few bytes from any number of cells, so such texts are
// bounded. Throws std::bad_alloc beyond.
class FormulaMoves {
 public:
  // `sheet` is the one whose cells move; `carried` may be null.
  FormulaMoves(formula::Adjuster& adjuster, const Sheet& sheet, const CarriedMove* carried)
      : adjuster_(adjuster), sheet_(sheet), carried_(carried) {}

  // The new text of a formula that stands on a sheet; nothing when it stays.
  std::optional<std::string> edited(const Sheet* on, std::string_view formula);
  // Cells of the book, validations of its other sheets, and names, if they follow.
  void collect(Workbook& book, bool names_follow);
  // What may fail of putting them in place; then nothing has changed.
  void begin_apply(Workbook& book);
  void apply(Workbook& book) noexcept;

 private:
  // Cells of a shared formula that the move leaves alike.
  struct Group {
    formula::SharedAdjuster::Form form;
    CellAddress from;  // of the first of them
    CellAddress to;
    std::vector<std::uint32_t> records;
  };
  // Places along the axis of the move whose cells are of one group.
  struct Stretch {
    int last = 0;
    std::size_t group = 0;
  };
  struct Split {
    Sheet* rows = nullptr;
    std::deque<SharedFormula> formulas;  // of the sheet; empty for those that stay
    std::vector<std::pair<std::uint32_t, std::uint32_t>> records;  // with the formula's number
  };

  void collect_cells(Sheet& rows, const Sheet& owner);
  void collect_shared(Sheet& rows, const Sheet& owner);
  void pay_for_group(std::size_t bytes);
  void collect_groups(Sheet& rows, bool own_sheet, Split& split, std::uint32_t number,
                      const formula::SharedAdjuster& shared, const std::vector<Group>& groups);
  void collect_names(Workbook& book, bool names_follow);
  bool goes_with_filter(const DefinedName& name) const;

  formula::Adjuster& adjuster_;
  const Sheet& sheet_;
  const CarriedMove* carried_;
  FormulaEdits texts_;
  std::size_t room_ = std::size_t{256} << 20;  // bytes that shared formulas may still become
  std::vector<Split> splits_;
  std::vector<std::pair<const DefinedName*, std::string>> names_;
  const DefinedName* filter_name_ = nullptr;  // which goes with its filter
};

}  // namespace engine
