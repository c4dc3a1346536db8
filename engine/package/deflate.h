// Packing and unpacking deflate data, with ISA-L where the build has it, else with zlib.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace engine::package {

// Packs whole texts, one after another, with buffers that are kept from one to the next. Not for
// two threads at once.
class Deflater {
 public:
  enum class Ending {
    Joint,  // ends on a byte boundary; more data, packed on its own, follows
    Final,  // ends the deflate stream
  };

  Deflater();
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater();

  // Appends the packed bytes to `out`.
  void pack(std::string_view bytes, Ending ending, std::string& out);

 private:
  struct State;
  std::unique_ptr<State> state_;  // made by the first pack
};

// The end of a stream whose blocks all ended jointly: an empty last block.
constexpr std::string_view kDeflateEnd{"\x03\x00", 2};

// Unpacks one deflate stream piece by piece.
class Inflater {
 public:
  enum class Status { More, End, Damaged };

  struct Step {
    std::size_t consumed = 0;
    std::size_t produced = 0;
    Status status = Status::More;
  };

  Inflater();
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater();

  // Takes from `packed` and fills `out` until one of them is used up or the stream ends.
  Step step(std::span<const char> packed, std::span<char> out);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The checksum of zip; `crc` is that of what came before, 0 at the beginning.
std::uint32_t crc32_of(std::string_view bytes, std::uint32_t crc = 0);

// The checksum of two texts in a row.
std::uint32_t crc32_join(std::uint32_t first, std::uint32_t second, std::uint64_t second_size);

}  // namespace engine::package
