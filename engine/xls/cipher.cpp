#include "engine/xls/cipher.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/little_endian.h"
#include "engine/system/digest.h"
#include "engine/text/utf16.h"
#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

constexpr std::string_view kPassword = "VelvetSweatshop";
constexpr std::size_t kBits40 = 5;  // as bytes

constexpr std::size_t kMd5Size = 16;
constexpr std::size_t kSha1Size = 20;

std::string md5(std::string_view text) { return std::string(system::view_of(system::md5(text))); }
std::string sha1(std::string_view text) { return std::string(system::view_of(system::sha1(text))); }

std::string number_bytes(std::uint32_t number) {
  std::string bytes;
  package::put32(bytes, number);
  return bytes;
}

void fill_key_stream(std::string_view key, std::span<unsigned char> stream) {
  std::array<unsigned char, 256> state{};
  std::iota(state.begin(), state.end(), static_cast<unsigned char>(0));
  std::size_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = (j + state[i] + static_cast<unsigned char>(key[i % key.size()])) & 0xFF;
    std::swap(state[i], state[j]);
  }
  std::size_t i = 0;
  j = 0;
  for (unsigned char& byte : stream) {
    i = (i + 1) & 0xFF;
    j = (j + state[i]) & 0xFF;
    std::swap(state[i], state[j]);
    byte = state[(state[i] + state[j]) & 0xFF];
  }
}

// The first form: 40 bits of a digest over the password and a salt of 16 bytes, repeated.
Cipher::BlockKey first_form_key(std::string_view salt) {
  const std::string password = md5(utf16_bytes(kPassword)).substr(0, kBits40);
  std::string mixed;
  for (int i = 0; i < 16; ++i) mixed.append(password).append(salt);
  return [base = md5(mixed).substr(0, kBits40)](std::uint32_t block) {
    return md5(base + number_bytes(block));
  };
}

// The second one: as many bits as the file says, zeros behind a short key.
Cipher::BlockKey second_form_key(std::string_view salt, std::size_t key_size) {
  return [base = sha1(std::string(salt) + utf16_bytes(kPassword)), key_size](std::uint32_t block) {
    std::string key = sha1(base + number_bytes(block)).substr(0, key_size);
    if (key_size == kBits40) key.resize(16);
    return key;
  };
}

// The oldest form: the characters of the password and one more, mixed with a key that follows from
// all of them.
Cipher::Mixed oldest_form_bytes(std::uint16_t key) {
  constexpr char kLast = '\xBB';
  const std::string text = std::string(kPassword) + kLast;
  Cipher::Mixed bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned half = i % 2 != 0 ? key >> 8U : key;
    const auto mixed = static_cast<unsigned char>(static_cast<unsigned char>(text[i]) ^ half);
    bytes[i] = std::rotr(mixed, 1);
  }
  return bytes;
}

[[noreturn]] void refuse() { throw package::FileError("is protected by a password"); }

}  // namespace

void Cipher::apply(std::uint64_t offset, std::size_t record_size, std::span<char> bytes) {
  if (!key_) {
    constexpr int kTurn = 5;
    std::uint64_t at = offset + record_size;
    for (char& byte : bytes) {
      const unsigned char mixed = mixed_[at++ % mixed_.size()];
      byte = static_cast<char>(
          std::rotr(static_cast<unsigned char>(static_cast<unsigned char>(byte) ^ mixed), kTurn));
    }
    return;
  }
  for (char& byte : bytes) {
    if (offset / kBlock != block_) {
      block_ = offset / kBlock;
      fill_key_stream(key_(static_cast<std::uint32_t>(block_)), stream_);
    }
    byte = static_cast<char>(static_cast<unsigned char>(byte) ^ stream_[offset % kBlock]);
    ++offset;
  }
}

// The file holds a random text and its digest, both encrypted: they agree with the right password.
// In the oldest form it holds two numbers that follow from the password.
Cipher default_cipher(std::string_view file_pass) {
  constexpr std::uint16_t kOldest = 0;
  constexpr std::uint16_t kOldestKey = 0xB359;
  constexpr std::uint16_t kOldestProof = 0x9A0A;
  constexpr std::uint16_t kRc4 = 1;
  constexpr std::size_t kText = 16;
  Fields in(file_pass);
  const unsigned form = in.take16();
  if (form == kOldest && in.take16() == kOldestKey && in.take16() == kOldestProof)
    return Cipher(oldest_form_bytes(kOldestKey));
  if (form != kRc4) refuse();
  const unsigned major = in.take16();
  const unsigned minor = in.take16();
  const bool is_first = major == 1 && minor == 1;
  const bool is_second = major >= 2 && major <= 4 && minor == 2;
  if (!is_first && !is_second) refuse();
  std::size_t key_size = 0;
  std::string_view salt;
  std::string proof;
  if (is_first) {
    salt = in.take(kText);
    proof = in.take(kText + kMd5Size);
  } else {
    in.skip(4);
    Fields header(in.take(in.take32()));
    header.skip(16);
    key_size = header.take32() / 8;
    if (key_size == 0) key_size = kBits40;
    if (!header.ok() || key_size < kBits40 || key_size > 16 || in.take32() != kText) refuse();
    salt = in.take(kText);
    proof = in.take(kText);
    in.skip(4);
    proof += in.take(kSha1Size);
  }
  if (!in.ok()) refuse();
  Cipher cipher(is_first ? first_form_key(salt) : second_form_key(salt, key_size));
  cipher.apply(0, proof.size(), proof);
  const std::string text = proof.substr(0, kText);
  if (proof.substr(kText) != (is_first ? md5(text) : sha1(text))) refuse();
  return cipher;
}

}  // namespace engine::xls
