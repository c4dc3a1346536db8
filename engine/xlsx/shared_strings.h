// The shared texts of a book: xl/sharedStrings.xml.
//
// Cells name texts by their place in this part, and cells of sheets that nobody reads keep doing
// so. Hence the part is only appended to: its bytes stay, new texts come behind them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/block_reader.h"
#include "engine/workbook/string_pool.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"

namespace engine::xlsx {

// Reads all texts into the pool. Gives the number of cells that the part says name one. Throws
// FileError.
std::uint64_t read_shared_strings(package::BlockReader& reader, std::string_view part,
                                  StringPool& pool);

// Which texts of the pool a save writes behind those of the file, and under which numbers. Texts
// that no cell shows any more are left out.
class WrittenTexts {
 public:
  explicit WrittenTexts(const StringPool& pool)
      : pool_(pool), from_file_(pool.count_from_file()), numbers_(pool.size() - from_file_) {}

  // Notes the texts that the cells of a sheet show.
  void enter(const SheetContents& sheet);
  // Gives out numbers; afterwards number() may be asked.
  void settle();

  std::uint32_t number(std::uint32_t index) const {
    return index < from_file_ ? index : numbers_[index - from_file_];
  }
  std::uint64_t cells() const { return cells_; }
  bool empty() const { return added_.empty(); }
  // Indices in the pool of the texts behind the file's, in the order of their numbers.
  const std::vector<std::uint32_t>& added() const { return added_; }

 private:
  const StringPool& pool_;
  const std::uint32_t from_file_;
  std::vector<std::uint32_t> numbers_;  // before settle(): 1 for a text that is shown
  std::vector<std::uint32_t> added_;
  std::uint64_t cells_ = 0;
};

// The part with the texts added. `stored` are the bytes of the present one, empty when there is
// none; `count` is the number of cells that name a text. Pool and texts must outlive the blocks.
PartBlocks write_shared_strings(std::string stored, std::string_view part, const StringPool& pool,
                                const WrittenTexts& texts, std::uint64_t count);

}  // namespace engine::xlsx
