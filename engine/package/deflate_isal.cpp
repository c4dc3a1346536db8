// Deflate with ISA-L at its first two levels, which know the places of earlier text by a hash:
// about five times as fast as zlib's first and never larger. The second level's table is larger,
// which saves a tenth on running text and costs next to nothing, but has to be cleared for each
// part.
#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <type_traits>

#include "engine/package/deflate.h"

namespace engine::package {
namespace {

// The library counts in 32 bits.
constexpr std::size_t kMaxStep = std::size_t{1} << 30;

constexpr std::size_t kLeastForSecondLevel = std::size_t{1} << 16;

// The library's interface does not know const; it only reads its input.
std::uint8_t* input(const char* bytes) {
  return const_cast<std::uint8_t*>(reinterpret_cast<const std::uint8_t*>(bytes));
}

// Calls the library. On Windows a function has to leave xmm6 to xmm15 as it finds them, and some of
// the library's do not: what is said to change here, the compiler saves.
template <class Result, class... Parameters>
Result call(Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
  const Result result = function(arguments...);
#ifdef _WIN64
  asm volatile("" ::
                   : "xmm6", "xmm7", "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14",
                     "xmm15");
#endif
  return result;
}

}  // namespace

struct Deflater::State {
  isal_zstream stream;
  std::array<std::uint8_t, ISAL_DEF_LVL2_DEFAULT> level;
  std::array<std::uint8_t, 64 * 1024> packed;
};

Deflater::Deflater() = default;
Deflater::~Deflater() = default;

void Deflater::pack(std::string_view bytes, Ending ending, std::string& out) {
  if (!state_) state_ = std::make_unique_for_overwrite<State>();
  auto& stream = state_->stream;
  isal_deflate_init(&stream);
  stream.level = bytes.size() < kLeastForSecondLevel ? 1 : 2;
  stream.level_buf = state_->level.data();
  stream.level_buf_size = static_cast<std::uint32_t>(state_->level.size());
  stream.flush = ending == Ending::Joint ? FULL_FLUSH : NO_FLUSH;
  bool last = false;
  while (!last) {
    const auto part = bytes.substr(0, kMaxStep);
    bytes.remove_prefix(part.size());
    last = bytes.empty();
    stream.next_in = input(part.data());
    stream.avail_in = static_cast<std::uint32_t>(part.size());
    stream.end_of_stream = last && ending == Ending::Final ? 1 : 0;
    do {
      stream.next_out = state_->packed.data();
      stream.avail_out = static_cast<std::uint32_t>(state_->packed.size());
      if (call(isal_deflate, &stream) != COMP_OK)
        throw std::logic_error("deflate refused its input");
      out.append(reinterpret_cast<const char*>(state_->packed.data()),
                 state_->packed.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }
}

struct Inflater::State {
  inflate_state stream;
};

Inflater::Inflater() : state_(std::make_unique_for_overwrite<State>()) {
  isal_inflate_init(&state_->stream);
  state_->stream.crc_flag = ISAL_DEFLATE;
}

Inflater::~Inflater() = default;

Inflater::Step Inflater::step(std::span<const char> packed, std::span<char> out) {
  auto& stream = state_->stream;
  const auto in_size = static_cast<std::uint32_t>(std::min(packed.size(), kMaxStep));
  const auto out_size = static_cast<std::uint32_t>(std::min(out.size(), kMaxStep));
  stream.next_in = input(packed.data());
  stream.avail_in = in_size;
  stream.next_out = reinterpret_cast<std::uint8_t*>(out.data());
  stream.avail_out = out_size;
  const int result = call(isal_inflate, &stream);
  // At the end the library hands back what it had taken too much, even in an earlier step.
  Step step{in_size - std::min(in_size, stream.avail_in), out_size - stream.avail_out,
            Status::More};
  if (result < 0) {
    step.status = Status::Damaged;
  } else if (stream.block_state == ISAL_BLOCK_FINISH) {
    step.status = Status::End;
  }
  return step;
}

std::uint32_t crc32_of(std::string_view bytes, std::uint32_t crc) {
  if (bytes.empty()) return crc;
  return call(crc32_gzip_refl, crc, input(bytes.data()), bytes.size());
}

std::uint32_t crc32_join(std::uint32_t first, std::uint32_t second, std::uint64_t second_size) {
  return static_cast<std::uint32_t>(
      crc32_combine(first, second, static_cast<z_off_t>(second_size)));
}

}  // namespace engine::package
