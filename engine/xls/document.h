// The .xls file behind a workbook.
//
// Loading reads the globals: the list of sheets, styles, texts and names. Sheets are read when they
// are asked for, straight from where the stream lies in the file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/codec.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/loaded_file.h"

namespace engine::xls {

// The streams that a workbook may lie in, the first one that is there.
inline constexpr std::string_view kStreams[] = {"Workbook", "Book"};

class Document : public engine::Document {
 public:
  static std::unique_ptr<Document> make_new(Workbook& book);

  // Reads a file into an empty workbook. Throws FileError.
  static std::unique_ptr<Document> load(std::shared_ptr<const package::Source> source,
                                        Workbook& book, LoadScope scope);

  void read_sheet(Workbook& book, Sheet& sheet) override;
  std::unique_ptr<OutsideRows> read_outside(const Workbook& book,
                                            const Sheet& sheet) const override;
  void read_pictures(Workbook& book) override;
  void read_picture(Workbook& book, std::size_t index) override;
  std::vector<CellRange> pivot_tables(const Workbook& book, const Sheet& sheet) const override;
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
  Document() = default;

  void open(std::shared_ptr<const package::Source> source);
  void part_sheets(const Workbook& book);
  void look_at_tabs(Workbook& book);
  std::string drawing_damage(const DrawingPart& drawing, const Sheet& sheet) const;

  std::int64_t created_ = 0;          // of a new book: when, in seconds since 1970
  std::unique_ptr<LoadedFile> file_;  // null for a new book
  std::string lost_;                  // what an older file has that nothing is made of here
  SheetParts made_;                   // of copies that have no place in the book yet
};

}  // namespace engine::xls
