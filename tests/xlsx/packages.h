// Packages for tests: made from texts, loaded, saved, and looked into.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/package/archive_writer.h"
#include "engine/package/output.h"
#include "engine/package/source.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/document.h"

namespace engine::xlsx {

using PartTexts = std::map<std::string, std::string>;

inline std::string zip(const PartTexts& parts) {
  package::MemoryOutput output;
  package::ArchiveWriter archive(output);
  for (const auto& [name, text] : parts) archive.add(name, text);
  archive.finish();
  return std::string(output.view());
}

inline std::shared_ptr<const package::Source> source_of(std::string_view bytes) {
  return package::Source::from_bytes({bytes.begin(), bytes.end()});
}

inline constexpr std::string_view kMainNamespace =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
inline constexpr std::string_view kOfficeRelations =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

// A .rels part; each relationship is kind and target.
inline std::string relations(const std::vector<std::pair<std::string, std::string>>& targets,
                             std::string_view family = kOfficeRelations) {
  std::string text =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  int number = 0;
  for (const auto& [kind, target] : targets)
    text += "<Relationship Id=\"rId" + std::to_string(++number) + "\" Type=\"" +
            std::string(family) + "/" + kind + "\" Target=\"" + target + "\"/>";
  return text + "</Relationships>";
}

inline std::string types(const PartTexts& overrides) {
  std::string text =
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
      "<Default Extension=\"rels\" "
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>";
  for (const auto& [name, type] : overrides)
    text += "<Override PartName=\"/" + name + "\" ContentType=\"application/" + type + "\"/>";
  return text + "</Types>";
}

inline std::string worksheet(std::string_view rows, std::string_view head = {},
                             std::string_view tail = {}) {
  return "<worksheet xmlns=\"" + std::string(kMainNamespace) + "\" xmlns:r=\"" +
         std::string(kOfficeRelations) + "\">" + std::string(head) + "<sheetData>" +
         std::string(rows) + "</sheetData>" + std::string(tail) + "</worksheet>";
}

inline std::string workbook_text(std::string_view sheets, std::string_view rest = {}) {
  return "<workbook xmlns=\"" + std::string(kMainNamespace) + "\" xmlns:r=\"" +
         std::string(kOfficeRelations) + "\"><sheets>" + std::string(sheets) + "</sheets>" +
         std::string(rest) + "</workbook>";
}

inline std::string texts_part(std::string_view items) {
  return "<sst xmlns=\"" + std::string(kMainNamespace) + "\" count=\"9\" uniqueCount=\"9\">" +
         std::string(items) + "</sst>";
}

// A book of one sheet with the texts "zero" and "one" and a number of parts more.
inline PartTexts book_of(std::string sheet) {
  return {
      {"[Content_Types].xml",
       types({{"xl/workbook.xml", "vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"},
              {"xl/worksheets/sheet1.xml",
               "vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"},
              {"xl/sharedStrings.xml",
               "vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml"}})},
      {"_rels/.rels", relations({{"officeDocument", "xl/workbook.xml"}})},
      {"xl/workbook.xml", workbook_text("<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/>")},
      {"xl/_rels/workbook.xml.rels",
       relations({{"worksheet", "worksheets/sheet1.xml"}, {"sharedStrings", "sharedStrings.xml"}})},
      {"xl/sharedStrings.xml", texts_part("<si><t>zero</t></si><si><t>one</t></si>")},
      {"xl/worksheets/sheet1.xml", std::move(sheet)},
  };
}

// A book with the document behind it.
struct Book {
  Workbook workbook{Limits()};
  std::unique_ptr<Document> document;

  Sheet& sheet(std::size_t index = 0) { return *workbook.sheets()[index]; }
  Sheet& add_sheet(std::string name) {
    NewSheet made = make_sheet(workbook, *document, std::move(name));
    make_room(workbook, made);
    place_sheet(workbook, *document, workbook.sheets().size(), std::move(made));
    return *workbook.sheets().back();
  }
  Sheet& read(std::size_t index = 0) {
    document->read_sheet(workbook, sheet(index));
    return sheet(index);
  }
  std::string save(SaveOptions options = {}) const {
    package::MemoryOutput output;
    document->save(workbook, options, output);
    return std::string(output.view());
  }

  // What a cell holds, readable: "1.5", "\"text\"", "TRUE", "#N/A", "-" for a blank one, "" for
  // none; a formula in front of its value: "=A1+1: 3".
  std::string show(const Sheet& at, int row, int column) const {
    const Cell* cell = at.contents().cells.find(row, column);
    if (!cell) return "";
    const CellRecord* record = at.contents().record(*cell);
    const Value value = at.contents().value(*cell);
    std::string text;
    std::string moved;
    if (record && record->has_formula())
      text =
          "=" +
          std::string(at.contents().formula(*record, {row, column}, workbook.limits.grid, moved)) +
          ": ";
    switch (value.kind) {
      case ValueKind::kNone:
        return text + "-";
      case ValueKind::kNumber: {
        std::string number = std::to_string(value.number);
        return text + number.erase(number.find_last_not_of('0') + 1);
      }
      case ValueKind::kText:
        return text + "\"" + std::string(workbook.strings[value.text()]) + "\"";
      case ValueKind::kBoolean:
        return text + (value.boolean() ? "TRUE" : "FALSE");
      case ValueKind::kError:
        return text + std::string(error_text(workbook, value.error()));
    }
    return text;
  }
  std::string show(int row, int column) { return show(sheet(), row, column); }
};

inline std::unique_ptr<Book> new_book() {
  auto book = std::make_unique<Book>();
  book->document = Document::make_new(book->workbook);
  return book;
}

inline std::unique_ptr<Book> load(std::string_view bytes) {
  auto book = std::make_unique<Book>();
  book->document = Document::load(source_of(bytes), book->workbook);
  return book;
}
inline std::unique_ptr<Book> load(const PartTexts& parts) { return load(zip(parts)); }

// The parts of a saved package.
inline PartTexts unzip(std::string_view bytes) {
  const package::Archive archive(source_of(bytes));
  PartTexts parts;
  for (const auto& entry : archive.entries()) parts[entry.name] = archive.read(entry);
  return parts;
}

// What loading and reading all sheets is refused with; empty when nothing is refused.
inline std::string refusal(std::string_view bytes) try {
  const auto book = load(bytes);
  for (std::size_t i = 0; i < book->workbook.sheets().size(); ++i) book->read(i);
  return "";
} catch (const package::FileError& error) {
  return error.what();
}

}  // namespace engine::xlsx
