// Workbooks as bytes: made, changed part by part, looked into.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <string_view>

#include "engine/package/archive.h"
#include "engine/package/archive_writer.h"
#include "tests/api/stage.h"

inline std::string saved(libxl::Book& book) {
  const char* data = nullptr;
  unsigned size = 0;
  EXPECT_TRUE(book.saveRaw(&data, &size)) << book.errorMessage();
  return {data, size};
}

inline bool load(libxl::Book& book, const std::string& bytes, int sheet = -1, int first = -1,
                 int last = -1) {
  return book.loadRaw(bytes.data(), static_cast<unsigned>(bytes.size()), sheet, first, last);
}

// Sheets One, Two, Three, each with its number in A1 and rows 0..9 filled.
inline std::string three_sheets() {
  Stage stage;
  stage.book->delSheet(0);
  int number = 0;
  for (const wchar_t* name : {L"One", L"Two", L"Three"}) {
    libxl::Sheet* sheet = stage.book->addSheet(name);
    ++number;
    for (int row = 0; row < 10; ++row) sheet->writeNum(row, 0, number + row);
  }
  return saved(*stage.book);
}

// The workbook with the text of a part replaced.
inline std::string with_replaced(const std::string& bytes, std::string_view part,
                                 std::string_view from, std::string_view to) {
  const engine::package::Archive archive(
      engine::package::Source::from_bytes({bytes.begin(), bytes.end()}));
  engine::package::MemoryOutput output;
  engine::package::ArchiveWriter writer(output);
  for (const engine::package::ArchiveEntry& entry : archive.entries()) {
    std::string text = archive.read(entry);
    if (entry.name == part) {
      const std::size_t at = text.find(from);
      EXPECT_NE(at, std::string::npos) << text;
      text.replace(at, from.size(), to);
    }
    writer.add(entry.name, text);
  }
  writer.finish();
  return std::string(output.view());
}

// The workbook with further parts.
inline std::string with_added(
    const std::string& bytes,
    std::initializer_list<std::pair<std::string_view, std::string_view>> parts) {
  const engine::package::Archive archive(
      engine::package::Source::from_bytes({bytes.begin(), bytes.end()}));
  engine::package::MemoryOutput output;
  engine::package::ArchiveWriter writer(output);
  for (const engine::package::ArchiveEntry& entry : archive.entries())
    writer.add(entry.name, archive.read(entry));
  for (const auto& [name, text] : parts) writer.add(std::string(name), std::string(text));
  writer.finish();
  return std::string(output.view());
}

// The text of a part.
inline std::string part_of(const std::string& bytes, std::string_view part) {
  const engine::package::Archive archive(
      engine::package::Source::from_bytes({bytes.begin(), bytes.end()}));
  const auto* entry = archive.find(part);
  return entry ? archive.read(*entry) : "";
}
