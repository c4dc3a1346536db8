#include "runtime/compression.h"

#include <zlib.h>

#include <array>

#include "runtime/error_state.h"

namespace {

// Only the first digit must be that of the library that is present.
constexpr const char* kVersion = "1.2.11";
constexpr int kMaxWindowBits = 15;
constexpr int kGzipWrapper = 16;
constexpr int kAnyWrapper = 32;
constexpr int kMemoryLevel = 8;

Bytef* as_bytes(char* chars) { return reinterpret_cast<Bytef*>(chars); }

std::vector<char> fail(int status) {
  g_last_error = static_cast<short>(status);
  return {};
}

}  // namespace

std::vector<char> CompressContainerStream(std::vector<char> bytes) {
  std::vector<char> packed(compressBound(static_cast<uLong>(bytes.size())));
  z_stream stream{};
  stream.next_in = as_bytes(bytes.data());
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = as_bytes(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  int status = deflateInit2_(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kMaxWindowBits + kGzipWrapper,
                             kMemoryLevel, Z_DEFAULT_STRATEGY, kVersion, sizeof stream);
  if (status != Z_OK) return fail(status);

  status = deflate(&stream, Z_FINISH);
  // Ending a stream that is not finished, because the room was too small, is an error of its own.
  const int ended = deflateEnd(&stream);
  if (status != Z_OK && status != Z_STREAM_END) return fail(status);
  if (ended != Z_OK) return fail(ended);
  packed.resize(stream.total_out);
  g_last_error = codes::kNone;
  return packed;
}

std::vector<char> UncompressContainerStream(std::vector<char> bytes) {
  z_stream stream{};
  int status = inflateInit2_(&stream, kMaxWindowBits + kAnyWrapper, kVersion, sizeof stream);
  if (status != Z_OK) return fail(status);
  stream.next_in = as_bytes(bytes.data());
  stream.avail_in = static_cast<uInt>(bytes.size());

  std::vector<char> unpacked;
  std::array<char, 8192> window{};
  while (status == Z_OK && stream.avail_in > 0) {
    stream.next_out = as_bytes(window.data());
    stream.avail_out = static_cast<uInt>(window.size());
    status = inflate(&stream, Z_SYNC_FLUSH);
    if (status != Z_OK && status != Z_STREAM_END) break;
    unpacked.insert(unpacked.end(), window.begin(), window.end() - stream.avail_out);
  }
  const int ended = inflateEnd(&stream);
  if (status != Z_OK && status != Z_STREAM_END) return fail(status);
  g_last_error = static_cast<short>(ended);
  return unpacked;
}
