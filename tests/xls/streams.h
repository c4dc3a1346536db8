// Workbook streams and files made record by record.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/package/compound_file.h"
#include "engine/package/compound_writer.h"
#include "engine/package/little_endian.h"
#include "engine/package/output.h"
#include "engine/package/source.h"
#include "engine/text/utf16.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/codec.h"
#include "engine/xls/record_reader.h"

namespace engine::xls::testing {

inline std::string u8(std::uint64_t value) { return std::string(1, static_cast<char>(value)); }
inline std::string u16(std::uint64_t value) {
  std::string bytes;
  package::put16(bytes, value);
  return bytes;
}
inline std::string u32(std::uint64_t value) {
  std::string bytes;
  package::put32(bytes, value);
  return bytes;
}
inline std::string f64(double value) {
  std::string bytes;
  package::put64(bytes, std::bit_cast<std::uint64_t>(value));
  return bytes;
}

// Texts behind a length of one or two bytes and their option byte; narrow ones are Latin-1.
inline std::string narrow8(std::string_view text) {
  return u8(text.size()) + u8(0) + std::string(text);
}
inline std::string narrow16(std::string_view text) {
  return u16(text.size()) + u8(0) + std::string(text);
}
inline std::string wide16(std::string_view utf8) {
  const std::string bytes = utf16_bytes(utf8);
  return u16(bytes.size() / 2) + u8(1) + bytes;
}

inline std::string record(std::uint16_t id, std::string_view data) {
  return u16(id) + u16(data.size()) + std::string(data);
}
// A cell's record: its place and format, then the rest.
inline std::string cell(std::uint16_t id, int row, int column, int format, std::string_view rest) {
  return record(id, u16(static_cast<unsigned>(row)) + u16(static_cast<unsigned>(column)) +
                        u16(static_cast<unsigned>(format)) + std::string(rest));
}
inline std::string expression(std::string_view tokens) {
  return u16(tokens.size()) + std::string(tokens);
}
// A formula with a number for its value.
inline std::string formula(int row, int column, std::string_view tokens, double value = 0) {
  return cell(0x06, row, column, 15, f64(value) + u16(0) + u32(0) + expression(tokens));
}

inline std::string bof(unsigned kind) {
  return record(0x809, u16(0x600) + u16(kind) + std::string(12, '\0'));
}
inline std::string eof() { return record(0x0A, ""); }

struct SheetStream {
  std::string name;
  std::string records;
  unsigned kind = 0;  // as BOUNDSHEET has it
  unsigned state = 0;
};

// The sheets stand in front of the other globals' records, as their places are known then. Versions
// of the format differ in how a substream begins and in what names are like.
inline std::string stream_of(const std::vector<SheetStream>& sheets, std::string_view globals = {},
                             std::string (*begin)(unsigned kind) = bof,
                             std::string (*text)(std::string_view) = narrow8) {
  const std::string end = std::string(globals) + eof();
  std::string stream = begin(5);
  std::size_t place = stream.size() + end.size();
  for (const SheetStream& sheet : sheets) place += 4 + 6 + text(sheet.name).size();
  std::string bodies;
  for (const auto& [name, records, kind, state] : sheets) {
    stream += record(0x85, u32(place + bodies.size()) + u8(state) + u8(kind) + text(name));
    bodies += begin(kind == 2 ? 0x20 : 0x10) + records + eof();
  }
  return stream + end + bodies;
}

inline std::string file_of(std::string_view stream, const char* name = "Workbook") {
  package::MemoryOutput output;
  package::CompoundWriter writer(output);
  package::CompoundItem item;
  item.name = name;
  writer.begin_stream(0, item);
  writer.write(stream);
  writer.finish();
  return std::string(output.view());
}

// The records of a file by their numbers, in their order; those that continue one count as its own.
inline std::vector<std::pair<unsigned, std::string>> records_of(const std::string& file) {
  const package::CompoundFile compound(package::Source::from_bytes({file.begin(), file.end()}));
  const package::CompoundStream stream = compound.open(*compound.find_stream("Workbook"));
  RecordReader reader(stream, 0);
  std::vector<std::pair<unsigned, std::string>> records;
  while (reader.next()) records.emplace_back(reader.id(), std::string(reader.data()));
  return records;
}

// A book that was loaded from bytes. Throws FileError.
struct LoadedBook {
  explicit LoadedBook(std::string_view file, LoadScope scope = LoadScope::kEverything)
      : book(kCodec.limits),
        document(
            kCodec.load(package::Source::from_bytes({file.begin(), file.end()}), book, scope)) {}

  // A sheet, read.
  Sheet& sheet(std::size_t index = 0) {
    Sheet& found = *book.sheets()[index];
    document->read_sheet(book, found);
    return found;
  }

  std::string file(const SaveOptions& options = {}) {
    package::MemoryOutput output;
    document->save(book, options, output);
    return std::string(output.view());
  }

  Workbook book;
  std::unique_ptr<engine::Document> document;
};

// What a cell shows, as text: numbers plain, texts in quotes, errors and truth by their names. A
// formula follows behind "=".
inline std::string shown(LoadedBook& loaded, int row, int column, std::size_t sheet = 0) {
  const SheetContents& contents = loaded.sheet(sheet).contents();
  const Cell* cell = contents.cells.find(row, column);
  if (!cell) return "-";
  std::string text;
  const Value value = contents.value(*cell);
  switch (value.kind) {
    case ValueKind::kNone:
      text = "blank";
      break;
    case ValueKind::kNumber:
      text = std::to_string(value.number);
      break;
    case ValueKind::kText:
      text.append("\"").append(loaded.book.strings[value.text()]).append("\"");
      break;
    case ValueKind::kBoolean:
      text = value.boolean() ? "TRUE" : "FALSE";
      break;
    case ValueKind::kError:
      text = error_text(loaded.book, value.error());
      break;
  }
  const CellRecord* its = contents.record(*cell);
  std::string moved;
  if (its && its->has_formula())
    text.append(" =").append(contents.formula(*its, {row, column}, loaded.book.limits.grid, moved));
  return text;
}

struct Shown {
  int row;
  int column;
  const char* text;
};

inline void check(LoadedBook& book, std::initializer_list<Shown> cases, std::size_t sheet = 0) {
  for (const auto& [row, column, text] : cases) {
    SCOPED_TRACE(::testing::Message() << row << ", " << column);
    EXPECT_EQ(shown(book, row, column, sheet), text);
  }
}

}  // namespace engine::xls::testing
