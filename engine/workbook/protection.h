// The protection of a sheet, and what a file keeps of its password.
//
// It binds who works with the sheet in a spreadsheet program, not the engine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace engine {

// What is allowed in a protected sheet, a bit each.
enum Allowed : std::uint32_t {
  kAllowObjects = 1,
  kAllowScenarios = 2,
  kAllowFormatCells = 4,
  kAllowFormatColumns = 8,
  kAllowFormatRows = 16,
  kAllowInsertColumns = 32,
  kAllowInsertRows = 64,
  kAllowInsertHyperlinks = 128,
  kAllowDeleteColumns = 256,
  kAllowDeleteRows = 512,
  kAllowSelectLockedCells = 1024,
  kAllowSort = 2048,
  kAllowAutoFilter = 4096,
  kAllowPivotTables = 8192,
  kAllowSelectUnlockedCells = 16384,
};
inline constexpr std::uint32_t kAllowUsual = kAllowSelectLockedCells | kAllowSelectUnlockedCells;
inline constexpr std::uint32_t kAllowAll = 32767;

// How a format keeps passwords.
enum class PasswordForm : std::uint8_t {
  kSha512,     // many rounds over a salt
  kShortHash,  // 16 bits of the text in code page 1252
};

// Tells whether a password is the one that was set. All empty without a password.
struct PasswordHash {
  std::string algorithm;  // by its name in files; empty for the short hash
  std::string value;      // in base 64, as is the salt
  std::string salt;
  std::uint32_t rounds = 0;      // that follow upon the first
  std::uint16_t short_hash = 0;  // never 0 with a password

  friend bool operator==(const PasswordHash&, const PasswordHash&) = default;
};

struct Protection {
  bool on = false;
  std::uint32_t allowed = kAllowUsual;  // a sum of Allowed
  PasswordHash password;

  friend bool operator==(const Protection&, const Protection&) = default;
};

// With a new salt each time. An empty password is none.
PasswordHash hash_password(std::string_view password, PasswordForm form);

// The two forms for themselves. The salt is as it is, not in base 64.
std::string sha512_hash(std::string_view password, std::string_view salt, std::uint32_t rounds);
std::uint16_t short_hash(std::string_view password);

}  // namespace engine
