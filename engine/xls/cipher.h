// Streams that are encrypted.
//
// Programs encrypt a workbook whose structure alone is protected with a password that all of them
// know; such a book is opened without being asked for one. Of a record its data is encrypted, not
// its number and size. With RC4 the key stream goes on over these, and begins anew every 1,024
// bytes. In the oldest form the bits of each byte are turned and mixed with one of 16 bytes, which
// go round: with which of them a record begins, follows from where its data ends.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace engine::xls {

class Cipher {
 public:
  // The password's key for each block of the stream.
  using BlockKey = std::function<std::string(std::uint32_t block)>;

  // The bytes of the oldest form.
  using Mixed = std::array<unsigned char, 16>;

  explicit Cipher(BlockKey key) : key_(std::move(key)) {}
  explicit Cipher(const Mixed& mixed) : mixed_(mixed) {}

  // Decrypts bytes that lie at `offset` of the stream, in a record whose data has that size.
  void apply(std::uint64_t offset, std::size_t record_size, std::span<char> bytes);

 private:
  static constexpr std::size_t kBlock = 1024;

  BlockKey key_;  // empty in the oldest form
  Mixed mixed_{};
  std::array<unsigned char, kBlock> stream_{};  // of one block
  std::uint64_t block_ = UINT64_MAX;            // which
};

// The cipher for what a FILEPASS record says, with the password that all programs know. Throws
// FileError when it is another one, or another kind of encryption.
Cipher default_cipher(std::string_view file_pass);

}  // namespace engine::xls
