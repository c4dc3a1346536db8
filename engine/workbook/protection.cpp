#include "engine/workbook/protection.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "engine/system/digest.h"
#include "engine/system/random.h"
#include "engine/text/utf16.h"
#include "engine/text/wide.h"

namespace engine {

namespace {

constexpr std::uint32_t kRounds = 100000;
constexpr std::size_t kSaltSize = 16;

// Three bytes are four characters; "=" stands for those of bytes that the last three lack.
// The library of the digests has this as well, but with nearly all the rest of it behind: that
// doubled the size of the engine and took three quarters of the loader's work.
std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    std::uint32_t three = 0;
    for (std::size_t i = 0; i < 3; ++i)
      three = three << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= bytes.size() ? kDigits[three >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

// Characters of code page 1252 from 0x80 to 0x9F; the others are numbered as in Unicode.
constexpr std::uint16_t kCodePage1252[] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::uint8_t code_of(wchar_t unit) {
  const auto number = static_cast<std::uint32_t>(unit);
  if (number < 0x80 || (number >= 0xA0 && number <= 0xFF)) return static_cast<std::uint8_t>(number);
  const auto* const found = std::ranges::find(kCodePage1252, number);
  if (found == std::end(kCodePage1252)) return '?';
  return static_cast<std::uint8_t>(0x80 + (found - std::begin(kCodePage1252)));
}

}  // namespace

std::string sha512_hash(std::string_view password, std::string_view salt, std::uint32_t rounds) {
  std::string text = std::string(salt) + utf16_bytes(password);
  for (std::uint32_t round = 0;; ++round) {
    const auto digest = system::sha512(text);
    if (round == rounds) return base64(system::view_of(digest));
    text.assign(digest.data(), digest.size());
    for (int shift = 0; shift < 32; shift += 8) text += static_cast<char>(round >> shift & 0xFF);
  }
}

std::uint16_t short_hash(std::string_view password) {
  const auto rotate = [](std::uint32_t hash) { return (hash << 1 & 0x7FFF) | hash >> 14; };
  const std::wstring text = to_wide(password);
  std::uint32_t hash = 0;
  for (auto unit = text.rbegin(); unit != text.rend(); ++unit) hash = rotate(hash) ^ code_of(*unit);
  hash = rotate(hash) ^ static_cast<std::uint32_t>(text.size()) ^ 0xCE4B;
  return static_cast<std::uint16_t>(hash);
}

PasswordHash hash_password(std::string_view password, PasswordForm form) {
  PasswordHash hash;
  if (password.empty()) return hash;
  if (form == PasswordForm::kShortHash) {
    hash.short_hash = short_hash(password);
    return hash;
  }
  std::array<char, kSaltSize> salt{};
  system::fill_random(salt);
  hash.algorithm = "SHA-512";
  const std::string_view salt_bytes(salt.data(), salt.size());
  hash.salt = base64(salt_bytes);
  hash.value = sha512_hash(password, salt_bytes, kRounds);
  hash.rounds = kRounds;
  return hash;
}

}  // namespace engine
