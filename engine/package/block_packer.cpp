// Both threads take the next block that nobody has, make it and pack it into its slot of a ring.
// The calling thread writes finished slots in order after each of its blocks. A slot is taken again
// only when it is written, which bounds the packed bytes that wait. A small part is the calling
// thread's alone.
#include "engine/package/block_packer.h"

#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "engine/package/output.h"
#include "engine/system/second_core.h"

namespace engine::package {
namespace {

constexpr std::size_t kSlots = 8;

// To begin a thread and to warm up its buffers takes as long as packing this much.
constexpr std::size_t kBytesForTwo = std::size_t{1} << 19;

struct Slot {
  std::string packed;
  std::size_t size = 0;
  std::uint32_t crc = 0;
  bool ready = false;
};

class BlockPacker {
 public:
  BlockPacker(std::size_t count, const MakeBlock& make,
              const std::function<void(std::string_view)>& write)
      : count_(count), make_(make), write_(write) {}

  PackedPart run(Deflater& deflater) {
    try {
      work(deflater, true);
      while (written_ < count_ && !stopped()) write_ready(true);
    } catch (...) {
      stop(std::current_exception());
    }
    if (helper_.joinable()) helper_.join();
    if (failure_) std::rethrow_exception(failure_);
    add_packed(kDeflateEnd);
    return part_;
  }

 private:
  // Lets a second thread share the blocks behind the first if they are likely to be worth it.
  void share(std::size_t first_size) {
    if (first_size * count_ < kBytesForTwo || count_ == 1 || !system::has_second_core()) return;
    try {
      helper_ = std::thread([this] {
        try {
          Deflater deflater;
          work(deflater, false);
        } catch (...) {
          stop(std::current_exception());
        }
      });
    } catch (const std::system_error&) {
      // Then all blocks are this thread's.
    }
  }

  void work(Deflater& deflater, bool writes) {
    std::string text;
    for (;;) {
      const auto block = take(writes);
      if (block == count_) return;
      auto& slot = slots_[block % kSlots];
      text.clear();
      make_(block, text);
      if (block == 0) share(text.size());
      slot.packed.clear();
      deflater.pack(text, Deflater::Ending::Joint, slot.packed);
      slot.size = text.size();
      slot.crc = crc32_of(text);
      publish(slot);
      if (writes) write_ready(false);
    }
  }

  // The next block once its slot is free, or the count at the end.
  std::size_t take(bool writes) {
    for (;;) {
      std::unique_lock lock(mutex_);
      if (stopped_ || taken_ == count_) return count_;
      if (taken_ - written_ < kSlots) return taken_++;
      if (!writes) {
        changed_.wait(lock, [this] { return stopped_ || taken_ - written_ < kSlots; });
      } else {
        lock.unlock();
        write_ready(true);
      }
    }
  }

  void publish(Slot& slot) {
    {
      const std::lock_guard lock(mutex_);
      slot.ready = true;
    }
    changed_.notify_all();
  }

  // Writes the slots that are ready; waits for the first when told to.
  void write_ready(bool wait) {
    std::unique_lock lock(mutex_);
    auto* slot = &slots_[written_ % kSlots];
    if (wait) changed_.wait(lock, [this, slot] { return stopped_ || slot->ready; });
    while (slot->ready && !stopped_) {
      lock.unlock();
      write_slot(*slot);
      lock.lock();
      slot->ready = false;
      ++written_;
      changed_.notify_all();
      slot = &slots_[written_ % kSlots];
    }
  }

  void write_slot(const Slot& slot) {
    part_.crc = crc32_join(part_.crc, slot.crc, slot.size);
    part_.size += slot.size;
    if (part_.size > UINT32_MAX) throw SizeError(UINT32_MAX);
    add_packed(slot.packed);
  }

  void add_packed(std::string_view packed) {
    part_.packed_size += packed.size();
    if (part_.packed_size > UINT32_MAX) throw SizeError(UINT32_MAX);
    write_(packed);
  }

  bool stopped() {
    const std::lock_guard lock(mutex_);
    return stopped_;
  }

  // The first failure counts.
  void stop(std::exception_ptr failure) {
    {
      const std::lock_guard lock(mutex_);
      if (!failure_) failure_ = std::move(failure);
      stopped_ = true;
    }
    changed_.notify_all();
  }

  const std::size_t count_;
  const MakeBlock& make_;
  const std::function<void(std::string_view)>& write_;
  PackedPart part_;
  std::thread helper_;
  std::array<Slot, kSlots> slots_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t taken_ = 0;
  std::size_t written_ = 0;
  bool stopped_ = false;
  std::exception_ptr failure_;
};

}  // namespace

PackedPart pack_blocks(std::size_t count, const MakeBlock& make, Deflater& deflater,
                       const std::function<void(std::string_view)>& write) {
  return BlockPacker(count, make, write).run(deflater);
}

}  // namespace engine::package
