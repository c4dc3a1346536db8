#include "engine/xlsx/rows_ahead.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "engine/package/xml_scanner.h"

namespace engine::xlsx {

namespace {

using package::BlockReader;

constexpr std::string_view kHead = "<worksheet><sheetData>";
constexpr std::string_view kTail = "</sheetData></worksheet>";
constexpr std::string_view kRow = "<row r=\"";
constexpr std::string_view kRowEnd = "</row>";

// A sheet whose rows depend on others does so all along: from then on trying is not worth it.
constexpr int kMaxFailures = 4;

// Rows that lie in memory as a part of their own. The byte behind them is overwritten meanwhile, as
// that behind any block.
class RowsPart : public BlockReader {
 public:
  explicit RowsPart(std::span<char> rows) : rows_(rows), behind_(rows.data()[rows.size()]) {}
  RowsPart(const RowsPart&) = delete;
  RowsPart& operator=(const RowsPart&) = delete;
  ~RowsPart() override { rows_.data()[rows_.size()] = behind_; }

  std::span<char> next() override {
    switch (given_++) {
      case 0:
        return head_.next();
      case 1:
        return rows_;
      default:
        return tail_.next();
    }
  }

 private:
  package::MemoryReader head_{kHead};
  package::MemoryReader tail_{kTail};
  std::span<char> rows_;
  char behind_;
  int given_ = 0;
};

bool stands_alone(const RowPiece& piece) {
  const SheetContents& rows = piece.sheet;
  const auto has_children = [](const std::string& details) {
    return details.find(kDetailsEnd) != std::string::npos;
  };
  return rows.shared_formulas.empty() && rows.arrays.empty() && rows.outer_arrays.empty() &&
         piece.texts.new_errors.size() == 0 && std::ranges::none_of(rows.row_details, has_children);
}

}  // namespace

RowsAhead::RowsAhead(BlockReader& reader, std::string_view part, const SheetContext& context)
    : reader_(reader), part_(part), context_(context) {
  reader_.work_ahead([this](std::span<char> block, std::uint64_t offset) { read(block, offset); });
}

void RowsAhead::read(std::span<char> block, std::uint64_t offset) noexcept {
  if (failures_ == kMaxFailures) return;
  ++failures_;
  const std::string_view text(block.data(), block.size());
  const std::size_t begin = text.find(kRow);
  const std::size_t last = text.rfind(kRowEnd);
  if (begin == std::string_view::npos || last == std::string_view::npos || last < begin) return;
  try {
    auto piece = read_piece(block.subspan(begin, last + kRowEnd.size() - begin));
    if (!piece) return;
    const std::lock_guard lock(mutex_);
    pieces_.insert_or_assign(offset + begin, std::move(piece));
    failures_ = 0;
  } catch (...) {
    // Whatever it is, the sheet's reader meets it as well.
    return;
  }
}

std::unique_ptr<RowPiece> RowsAhead::read_piece(std::span<char> rows) const {
  auto piece = std::make_unique<RowPiece>(context_.workbook.limits);
  SheetContext context{piece->texts,          context_.parts,   context_.shared_texts,
                       context_.shared_texts, context_.formats, context_.dates};
  RowsPart part(rows);
  package::XmlScanner scanner(part, part_);
  scanner.next();
  scanner.next();
  const RowFilter all;
  RowReader reader(scanner, part_, context, all, piece->sheet, piece->remains);
  reader.read();
  // It may be that the rows end amid them, with another sheetData behind.
  if (scanner.offset() != kHead.size() + rows.size() || !stands_alone(*piece)) return nullptr;
  piece->size = rows.size();
  piece->last_row = reader.last_row();
  return piece;
}

std::uint64_t RowsAhead::first_from(std::uint64_t offset) {
  const std::lock_guard lock(mutex_);
  pieces_.erase(pieces_.begin(), pieces_.lower_bound(offset));
  return pieces_.empty() ? kNone : pieces_.begin()->first;
}

std::unique_ptr<RowPiece> RowsAhead::take(std::uint64_t begin) {
  const std::lock_guard lock(mutex_);
  return std::move(pieces_.extract(begin).mapped());
}

}  // namespace engine::xlsx
