// The .xls file behind a workbook.
//
// Loading reads the globals: the list of sheets, styles, texts and names. Sheets are read when they
// are asked for, straight from where the stream lies in the file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "engine/package/compound_file.h"
#include "engine/workbook/codec.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/globals.h"
#include "engine/xls/sheet_part.h"

namespace engine::xls {

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
  void remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& edit) override;
  // Carried records of a loaded file cannot be put back in their places yet.
  bool is_savable() const override { return created_.has_value(); }
  void save(const Workbook& book, const SaveOptions& options, package::Output& output) override;

 private:
  Document() = default;

  void part_sheets(const Workbook& book);
  void look_at_tabs(Workbook& book);
  std::string drawing_damage(const DrawingPart& drawing, const Sheet& sheet) const;

  std::optional<std::int64_t> created_;  // of a new book: when, in seconds since 1970
  package::CompoundStream stream_;
  Globals globals_;
  LoadedPictures pictures_;
  SheetParts sheets_;
};

}  // namespace engine::xls
