#include "engine/xls/sheet_write.h"

#include "engine/xls/sheet_records.h"

namespace engine::xls {

namespace {

// The groups of a sheet that the file has, or of a new one.
class SheetGroups : public GroupWriter {
 public:
  explicit SheetGroups(SheetWriting& to) : to_(to) {}

  std::size_t count() const override { return kSheetGroups; }

  std::optional<std::size_t> group_of(const RecordReader& record) const override {
    const auto group = group_of_record(record.id(), record.data());
    return group ? std::optional(static_cast<std::size_t>(*group)) : std::nullopt;
  }

  Mode mode(std::size_t group) const override {
    return entry_of(static_cast<SheetGroup>(group)).changed(to_) ? Mode::kReplace : Mode::kCopy;
  }

  void write(std::size_t group, RecordReader* old) override {
    entry_of(static_cast<SheetGroup>(group)).write(to_, old);
  }

  bool takes(const RecordReader& record) override {
    if (record.id() == kDefaultColumnWidth) note_columns(to_);
    return true;
  }

 private:
  SheetWriting& to_;
};

}  // namespace

void write_beginning(RecordWriter& out, std::uint16_t kind) {
  constexpr std::uint32_t kBuild = 0x0DBB;
  constexpr std::uint32_t kYear = 0x07CC;
  constexpr std::uint32_t kHistory = 0x41;
  constexpr std::uint32_t kOldestReader = 0x06;
  out.record(kBof, {kVersion8, kind, kBuild, kYear, kHistory, 0, kOldestReader, 0});
}

void write_new_sheet(RecordWriter& out, const BookWriting& book, const Sheet& sheet,
                     Drawings& drawings, std::vector<NamedPlace>& places) {
  CellsWriter cells(out, book, sheet);
  SheetWriting to{out, book, sheet, sheet.contents(), nullptr, cells, drawings, places};
  SheetGroups groups(to);
  write_beginning(out, kSheetStream);
  write_groups(groups);
  out.record(kEof, {});
}

}  // namespace engine::xls
