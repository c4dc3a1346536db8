// Cells at the end of a sheet that a second thread reads while the first reads from the front.
//
// The second thread walks over the records once to find the longest run of plain cells, and cuts it
// where rows begin. It reads the pieces from the last one forwards, all into one store, until the
// next one is the first thread's already. When that comes to stand right where the pieces begin it
// takes them all: what is read of a plain cell does not depend on what was read before.
//
// A piece that turns out to be special or damaged makes all of them void: then the first thread
// reads on itself, and tells what is wrong.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

#include "engine/workbook/sheet.h"
#include "engine/xls/plain_cells.h"
#include "engine/xls/sheet_reader.h"

namespace engine::xls {

class CellsAhead {
 public:
  // The records from the offset in the stream on, which stay where they lie, as do the cells that
  // are read of them. `like` says how the rows are that say nothing.
  CellsAhead(std::string_view records, std::uint64_t offset, const SheetContext& context,
             const SheetContents& like);
  CellsAhead(const CellsAhead&) = delete;
  CellsAhead& operator=(const CellsAhead&) = delete;
  ~CellsAhead();

  // Whether records of that size are worth a thread, and there may be one.
  static bool pays(std::size_t size);

  // The first thread is about to read on from the offset: gives how far it may go. That is nowhere
  // once it has come to what the second thread reads.
  std::uint64_t claim(std::uint64_t from);

  // Then: what was read, of which `last` is the last record and behind which `end` is. Nothing when
  // the first thread does not stand where it begins, or is to read it itself.
  struct Taken {
    SheetContents& sheet;
    std::uint64_t last;
    std::uint64_t end;
  };
  std::optional<Taken> take(std::uint64_t from);

 private:
  void run() noexcept;
  void find_pieces();
  bool read_pieces();
  bool begin_piece(std::size_t from);

  const std::string_view records_;
  const std::uint64_t offset_;
  SheetContents sheet_;
  PlainCells cells_;
  // Offsets in the records. The run of plain cells: where its pieces begin, and where it ends.
  std::vector<std::size_t> pieces_;
  std::size_t end_ = 0;
  std::size_t last_ = 0;  // its last record, once that is read

  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t first_end_;     // up to where the first thread reads
  std::size_t second_begin_;  // from where on the second one does; behind all when it does not
  bool reading_ = true;
  bool is_void_ = true;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace engine::xls
