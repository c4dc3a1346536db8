// Streams that are encrypted with RC4.
//
// Programs encrypt a workbook whose structure alone is protected with a password that all of them
// know; such a book is opened without being asked for one. Of a record its data is encrypted, not
// its number and size, but the key stream goes on over these. It begins anew every 1,024 bytes.
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

  explicit Cipher(BlockKey key) : key_(std::move(key)) {}

  // Decrypts bytes that lie at `offset` of the stream.
  void apply(std::uint64_t offset, std::span<char> bytes);

 private:
  static constexpr std::size_t kBlock = 1024;

  BlockKey key_;
  std::array<unsigned char, kBlock> stream_{};  // of one block
  std::uint64_t block_ = UINT64_MAX;            // which
};

// The cipher for what a FILEPASS record says, with the password that all programs know. Throws
// FileError when it is another one, or another kind of encryption.
Cipher default_cipher(std::string_view file_pass);

}  // namespace engine::xls
