#include "engine/xls/cells_ahead.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "engine/package/little_endian.h"
#include "engine/system/second_core.h"
#include "engine/xls/records.h"

namespace engine::xls {

namespace {

using package::get16;

constexpr std::size_t kLeast = std::size_t{1} << 19;  // below that a thread gains nothing
constexpr std::size_t kPiece = std::size_t{1} << 18;
constexpr std::size_t kStep = std::size_t{1} << 16;  // that the first thread claims at once

}  // namespace

bool CellsAhead::pays(std::size_t size) { return size >= kLeast && system::has_second_core(); }

CellsAhead::CellsAhead(std::string_view records, std::uint64_t offset, const SheetContext& context,
                       const SheetContents& like)
    : records_(records),
      offset_(offset),
      cells_(context, RowFilter(), sheet_),
      first_end_(std::min(kStep, records.size())),
      second_begin_(records.size()) {
  sheet_.default_row_height = like.default_row_height;
  sheet_.hides_rows = like.hides_rows;
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    reading_ = false;
  }
}

CellsAhead::~CellsAhead() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  if (thread_.joinable()) thread_.join();
}

std::uint64_t CellsAhead::claim(std::uint64_t from) {
  const std::lock_guard lock(mutex_);
  const std::size_t at = static_cast<std::size_t>(from - offset_);
  if (at >= second_begin_) return from;
  first_end_ = std::min(at + kStep, second_begin_);
  return offset_ + first_end_;
}

std::optional<CellsAhead::Taken> CellsAhead::take(std::uint64_t from) {
  {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !reading_; });
    if (is_void_ || from != offset_ + second_begin_) return std::nullopt;
  }
  return Taken{sheet_, offset_ + last_, offset_ + end_};
}

// Whatever goes wrong, the first thread meets it as well.
void CellsAhead::run() noexcept {
  bool is_good = false;
  try {
    find_pieces();
    is_good = read_pieces();
  } catch (...) {
    is_good = false;
  }
  {
    const std::lock_guard lock(mutex_);
    is_void_ = !is_good;
    if (is_void_) second_begin_ = records_.size();
    reading_ = false;
  }
  changed_.notify_all();
}

void CellsAhead::find_pieces() {
  std::vector<std::size_t> run;
  const auto end_run = [&](std::size_t end) {
    const bool is_longest = !run.empty() && (pieces_.empty() || end - run[0] > end_ - pieces_[0]);
    if (is_longest) {
      pieces_ = std::move(run);
      end_ = end;
    }
    run.clear();
  };
  unsigned row = 0;
  std::size_t at = 0;
  while (records_.size() - at >= PlainCells::kRoom) {
    const std::uint16_t id = get16(records_, at);
    const std::size_t size = kRecordHead + get16(records_, at + 2);
    if (size > records_.size() - at || id == kEof) break;
    if (!is_plain_cell(id)) {
      end_run(at);
    } else if (run.empty()) {
      run.push_back(at);
    } else if (id != kDbCell) {
      const unsigned its_row = get16(records_, at + kRecordHead);
      if (its_row != row && at - run.back() >= kPiece) run.push_back(at);
      row = its_row;
    }
    at += size;
  }
  end_run(at);
}

// False when there is nothing to take.
bool CellsAhead::read_pieces() {
  std::size_t end = end_;
  for (auto piece = pieces_.rbegin(); piece != pieces_.rend() && begin_piece(*piece); ++piece) {
    const std::size_t size = end - *piece;
    if (cells_.read(records_.substr(*piece), size) != size) return false;
    if (end == end_) last_ = *piece + cells_.last();
    end = *piece;
  }
  return end != end_;
}

// False when the first thread has got so far.
bool CellsAhead::begin_piece(std::size_t from) {
  const std::lock_guard lock(mutex_);
  if (stopped_ || from < first_end_) return false;
  second_begin_ = from;
  return true;
}

}  // namespace engine::xls
