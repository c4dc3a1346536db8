#include "engine/package/part_stream.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <system_error>
#include <thread>

#include "engine/package/file_error.h"

namespace engine::package {
namespace {

constexpr std::size_t kBlockSize = 256 * 1024;
constexpr std::size_t kInputBlock = 64 * 1024;

// One block with its room around.
class Block {
 public:
  std::span<char> fill(PartStream& stream) {
    if (!memory_) {
      memory_ = std::make_unique_for_overwrite<char[]>(BlockReader::kHeadroom + kBlockSize +
                                                       BlockReader::kTailroom);
    }
    char* const begin = memory_.get() + BlockReader::kHeadroom;
    filled_ = {begin, stream.fill({begin, kBlockSize})};
    return filled_;
  }
  std::span<char> filled() const { return filled_; }

 private:
  std::unique_ptr<char[]> memory_;
  std::span<char> filled_;
};

class PlainReader : public BlockReader {
 public:
  explicit PlainReader(PartStream stream) : stream_(std::move(stream)) {}
  std::span<char> next() override { return block_.fill(stream_); }

 private:
  PartStream stream_;
  Block block_;
};

// A ring of blocks between the unpacking thread and the consumer. The consumer holds one block;
// it goes back into the ring when the next one is asked for.
//
// While the ring is full the thread works on the newest blocks, so that the consumer, who comes
// from the other end, is met late: it has the oldest ones at hand meanwhile, and waits only for a
// block that is being worked on.
class AheadReader : public BlockReader {
 public:
  explicit AheadReader(PartStream stream) : stream_(std::move(stream)) {}

  ~AheadReader() override {
    if (!thread_.joinable()) return;
    {
      const std::lock_guard lock(mutex_);
      stopped_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }

  // Throws std::system_error where no thread can be had; the stream may then be taken back.
  void start() {
    thread_ = std::thread([this] { run(); });
  }
  PartStream take_back() { return std::move(stream_); }

  std::span<char> next() override {
    std::unique_lock lock(mutex_);
    if (ended_) return {};
    if (holding_) ++returned_;
    holding_ = false;
    changed_.notify_all();
    changed_.wait(
        lock, [this] { return made_ > returned_ ? working_ != returned_ : failure_ != nullptr; });
    if (made_ == returned_) std::rethrow_exception(failure_);
    holding_ = true;
    const auto block = place(returned_).block.filled();
    ended_ = block.empty();
    return block;
  }

  void work_ahead(Work work) override {
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return working_ == kNone; });
      work_ = std::move(work);
    }
    changed_.notify_all();
  }

 private:
  static constexpr std::size_t kBlocks = 8;
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  struct Place {
    Block block;
    std::uint64_t offset = 0;
    bool worked_on = false;
  };

  Place& place(std::size_t block) { return ring_[block % kBlocks]; }
  bool may_make() const { return !complete_ && made_ - returned_ < kBlocks; }
  // The newest block to work on. The oldest is the consumer's, who holds it or is about to.
  std::size_t work_left() {
    if (!work_) return kNone;
    for (std::size_t block = made_; block-- > returned_ + 1;)
      if (!place(block).worked_on) return block;
    return kNone;
  }

  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return stopped_ || may_make() || work_left() != kNone; });
      if (stopped_) return;
      if (may_make()) make(lock);
      else work(lock);
      changed_.notify_all();
    }
  }

  // These leave the lock while they are at it.
  void make(std::unique_lock<std::mutex>& lock) {
    Place& next = place(made_);
    lock.unlock();
    bool ended = false;
    std::exception_ptr failure;
    try {
      ended = next.block.fill(stream_).empty();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    complete_ = ended || failure;
    failure_ = std::move(failure);
    if (failure_) return;
    next.offset = bytes_made_;
    next.worked_on = ended;
    bytes_made_ += next.block.filled().size();
    ++made_;
  }

  void work(std::unique_lock<std::mutex>& lock) {
    working_ = work_left();
    Place& newest = place(working_);
    lock.unlock();
    work_(newest.block.filled(), newest.offset);
    lock.lock();
    newest.worked_on = true;
    working_ = kNone;
  }

  PartStream stream_;
  std::array<Place, kBlocks> ring_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t made_ = 0;
  std::size_t returned_ = 0;
  std::size_t working_ = kNone;  // the block that is worked on; `work_` stays as it is meanwhile
  std::uint64_t bytes_made_ = 0;
  Work work_;
  bool complete_ = false;  // all blocks are made that ever will be
  bool holding_ = false;
  bool ended_ = false;
  bool stopped_ = false;
  std::exception_ptr failure_;
  std::thread thread_;
};

}  // namespace

PartStream::PartStream(std::shared_ptr<const Source> source, const ArchiveEntry& entry,
                       std::uint64_t data_offset, Form form)
    : source_(std::move(source)),
      name_(entry.name),
      form_(form),
      expected_crc_(entry.crc),
      in_at_(data_offset),
      in_left_(entry.packed_size),
      out_left_(form == Form::Deflated ? entry.size : entry.packed_size) {
  if (form == Form::Deflated) inflater_ = std::make_unique<Inflater>();
}

std::size_t PartStream::fill(std::span<char> out) {
  if (ended_) return 0;
  out = out.first(static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), out_left_)));
  const auto size = form_ == Form::Deflated ? inflate(out) : fill_plain(out);
  out_left_ -= size;
  if (form_ != Form::Packed) crc_ = crc32_of({out.data(), size}, crc_);
  if (out_left_ == 0) verify();
  return size;
}

std::size_t PartStream::fill_plain(std::span<char> out) {
  source_->read(in_at_, out);
  in_at_ += out.size();
  return out.size();
}

std::size_t PartStream::inflate(std::span<char> out) {
  std::size_t done = 0;
  while (done < out.size()) {
    const auto step = inflater_->step(input(), out.subspan(done));
    packed_ = packed_.subspan(step.consumed);
    done += step.produced;
    if (step.status == Inflater::Status::Damaged) throw_damaged(name_, "cannot be unpacked");
    if (done == out.size()) break;
    const bool stuck = step.consumed == 0 && step.produced == 0;
    if (step.status == Inflater::Status::End || stuck) throw_damaged(name_, "ends too early");
  }
  return done;
}

// The stream must say by itself that it ends where the directory says.
void PartStream::expect_end() {
  char spare = 0;
  for (;;) {
    const auto step = inflater_->step(input(), {&spare, 1});
    packed_ = packed_.subspan(step.consumed);
    if (step.status == Inflater::Status::Damaged) throw_damaged(name_, "cannot be unpacked");
    if (step.produced != 0) throw_damaged(name_, "is longer than the directory tells");
    if (step.status == Inflater::Status::End) return;
    if (step.consumed == 0) throw_damaged(name_, "ends too early");
  }
}

// The packed bytes at hand, at least one while there are any.
std::span<const char> PartStream::input() {
  if (!packed_.empty() || in_left_ == 0) return packed_;
  if (const std::span<const char> all = source_->view(); !all.empty()) {
    packed_ = all.subspan(static_cast<std::size_t>(in_at_), static_cast<std::size_t>(in_left_));
  } else {
    buffer_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(in_left_, kInputBlock)));
    source_->read(in_at_, buffer_);
    packed_ = buffer_;
  }
  in_at_ += packed_.size();
  in_left_ -= packed_.size();
  return packed_;
}

void PartStream::verify() {
  ended_ = true;
  if (form_ == Form::Packed) return;
  if (inflater_) expect_end();
  if (crc_ != expected_crc_) throw_damaged(name_, "checksum does not match");
}

std::unique_ptr<BlockReader> read_blocks(PartStream stream) {
  return std::make_unique<PlainReader>(std::move(stream));
}

std::unique_ptr<BlockReader> read_blocks_ahead(PartStream stream) {
  auto reader = std::make_unique<AheadReader>(std::move(stream));
  try {
    reader->start();
  } catch (const std::system_error&) {
    return read_blocks(reader->take_back());
  }
  return reader;
}

}  // namespace engine::package
