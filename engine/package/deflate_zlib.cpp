// Deflate with zlib, for builds without ISA-L.
#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>

#include "engine/package/deflate.h"

namespace engine::package {
namespace {

constexpr int kLevel = 2;
constexpr int kRawWindow = -15;  // 32 KiB, no wrapper around the stream
constexpr int kMemory = 8;

// The library counts in 32 bits.
constexpr std::size_t kMaxStep = std::size_t{1} << 30;

// The library's interface does not know const; it only reads its input.
Bytef* input(const char* bytes) {
  return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes));
}

}  // namespace

struct Deflater::State {
  State() {
    if (deflateInit2(&stream, kLevel, Z_DEFLATED, kRawWindow, kMemory, Z_DEFAULT_STRATEGY) != Z_OK)
      throw std::bad_alloc();
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { deflateEnd(&stream); }

  z_stream stream{};
  std::array<Bytef, 64 * 1024> packed{};
};

Deflater::Deflater() = default;
Deflater::~Deflater() = default;

void Deflater::pack(std::string_view bytes, Ending ending, std::string& out) {
  if (!state_) state_ = std::make_unique<State>();
  auto& stream = state_->stream;
  deflateReset(&stream);
  bool last = false;
  while (!last) {
    const auto part = bytes.substr(0, kMaxStep);
    bytes.remove_prefix(part.size());
    last = bytes.empty();
    stream.next_in = input(part.data());
    stream.avail_in = static_cast<uInt>(part.size());
    const int flush = !last ? Z_NO_FLUSH : ending == Ending::Joint ? Z_FULL_FLUSH : Z_FINISH;
    do {
      stream.next_out = state_->packed.data();
      stream.avail_out = static_cast<uInt>(state_->packed.size());
      deflate(&stream, flush);
      out.append(reinterpret_cast<const char*>(state_->packed.data()),
                 state_->packed.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }
}

struct Inflater::State {
  State() {
    if (inflateInit2(&stream, kRawWindow) != Z_OK) throw std::bad_alloc();
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { inflateEnd(&stream); }

  z_stream stream{};
};

Inflater::Inflater() : state_(std::make_unique<State>()) {}
Inflater::~Inflater() = default;

Inflater::Step Inflater::step(std::span<const char> packed, std::span<char> out) {
  auto& stream = state_->stream;
  const auto in_size = static_cast<uInt>(std::min(packed.size(), kMaxStep));
  const auto out_size = static_cast<uInt>(std::min(out.size(), kMaxStep));
  stream.next_in = input(packed.data());
  stream.avail_in = in_size;
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = out_size;
  const int result = inflate(&stream, Z_NO_FLUSH);
  Step step{in_size - stream.avail_in, out_size - stream.avail_out, Status::More};
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  if (result == Z_STREAM_END) {
    step.status = Status::End;
  } else if (result != Z_OK && result != Z_BUF_ERROR) {
    step.status = Status::Damaged;
  }
  return step;
}

std::uint32_t crc32_of(std::string_view bytes, std::uint32_t crc) {
  if (bytes.empty()) return crc;
  return static_cast<std::uint32_t>(
      crc32_z(crc, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::uint32_t crc32_join(std::uint32_t first, std::uint32_t second, std::uint64_t second_size) {
  return static_cast<std::uint32_t>(
      crc32_combine(first, second, static_cast<z_off_t>(second_size)));
}

}  // namespace engine::package
