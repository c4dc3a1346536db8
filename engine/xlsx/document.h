// The .xlsx file behind a workbook.
//
// A document owns the parts of the package. Loading reads the list of sheets, styles and shared
// texts; sheets are read when they are asked for, everything else only when an operation has to
// change it. Saving copies the list of parts, replaces those that the workbook's changes concern,
// and copies the rest as it is stored.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "engine/package/source.h"
#include "engine/workbook/codec.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/carried_edits.h"
#include "engine/xlsx/drawing_part.h"
#include "engine/xlsx/parts.h"
#include "engine/xlsx/sheet_part.h"
#include "engine/xlsx/styles_part.h"
#include "engine/xlsx/table_names.h"
#include "engine/xlsx/workbook_part.h"
#include "engine/xlsx/worksheet_reader.h"

namespace engine::xlsx {

class Document : public engine::Document {
 public:
  static std::unique_ptr<Document> make_new(Workbook& book);

  // Reads a file into an empty workbook. Throws FileError.
  static std::unique_ptr<Document> load(std::shared_ptr<const package::Source> source,
                                        Workbook& book, LoadScope scope = LoadScope::kEverything);

  void read_sheet(Workbook& book, Sheet& sheet) override;
  std::unique_ptr<OutsideRows> read_outside(const Workbook& book,
                                            const Sheet& sheet) const override;
  bool may_refer(const Sheet& sheet) const override;
  void read_pictures(Workbook& book) override;
  void read_picture(Workbook& book, std::size_t index) override;
  std::vector<Table> tables(const Workbook& book, const Sheet& sheet) const override;
  bool is_table_name(const Workbook& book, std::string_view name) const override;
  std::vector<CellRange> pivot_tables(const Workbook& book, const Sheet& sheet) const override;
  std::optional<std::string> shown_formula(const Workbook& book,
                                           std::string_view formula) const override;
  void settle_tables(Workbook& book) override;
  void begin_sheet(const Workbook& book, Sheet& sheet) override;
  std::vector<formula::TableChange> copy_sheet(const Workbook& book, const Sheet& original,
                                               Sheet& copy) override;
  void place_sheet(Sheet& sheet) noexcept override;
  void remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& edit) override;
  void edit_formulas(Workbook& book, const FormulaEdit& edit) override;
  std::optional<MoveRefusal> refusal_of_move(const Workbook& book, const Sheet& sheet,
                                             const formula::Move& move) const override;
  std::unique_ptr<CarriedMove> prepare_move(Workbook& book, Sheet& sheet,
                                            const formula::Move& move) override;
  void save(const Workbook& book, const SaveOptions& options, package::Output& output) override;

 private:
  class Saving;
  class Moving;

  Document() = default;

  SheetContext context(Workbook& texts, const Workbook& book) const;
  // Gives why the comments cannot be read or rewritten; empty when they can.
  std::string read_notes(const SheetPart& sheet, SheetContents& contents) const;
  // The same of the sheet's drawing and its pictures.
  std::string read_drawing(Workbook& book, const SheetPart& sheet, SheetContents& contents);
  void read_tab(Sheet& sheet);
  // A sheet that is not in the book yet, with its parts. They enter the package together.
  struct ArrivingSheet {
    SheetParts sheet;  // the one
    NewParts parts;

    SheetPart& part() { return sheet.begin()->second; }
  };

  ArrivingSheet new_sheet(const Sheet& sheet);
  const SheetPart& part_of(const Sheet& sheet) const { return sheets_.at(&sheet); }
  // Throws before it changes anything.
  void remove_part(const SheetPart& gone);
  std::vector<TablePart>& tables_of(const Workbook& book, const SheetPart& sheet) const;
  std::vector<std::optional<std::string>> changed_headers(const Workbook& book, const Sheet& sheet,
                                                          const TablePart& table) const;
  std::map<CellAddress, Header> odd_headers(const Workbook& book, const Sheet& sheet) const;
  void read_readable_sheets(Workbook& book);
  // New formulas of carried things, but of what somebody else edits: those of a sheet, of a sheet's
  // tree alone, of some parts.
  struct CarriedExcept {
    const Sheet* sheet = nullptr;
    const Sheet* tree = nullptr;
    std::set<const Part*> parts;
  };
  CarriedEdits collect_carried(Workbook& book, const FormulaEdit& edit,
                               const CarriedExcept& except);

  Parts parts_;
  std::string main_;  // name of the workbook part
  WorkbookPart workbook_part_;
  StylesPart styles_part_;
  SheetParts sheets_;
  std::optional<StoredPictures> pictures_;  // once somebody asked for them
  std::optional<ArrivingSheet> arriving_;
  std::shared_ptr<const package::XmlTree> empty_worksheet_;  // what new sheets begin with
  std::uint32_t formats_ = 1;                                // in the file
  std::uint64_t text_cells_ = 0;  // that name a shared text, as the file counts them
  bool has_calculation_chain_ = false;
  bool sheet_removed_ = false;
  bool is_macro_enabled_ = false;          // the file's kind
  std::optional<TableNames> table_names_;  // known from the first copy of a table on
};

}  // namespace engine::xlsx
