#include "engine/workbook/protection.h"

#include <gtest/gtest.h>

namespace engine {
namespace {

// The values are those of independent programs.
TEST(Password, IsHashedInRounds) {
  EXPECT_EQ(sha512_hash("password", "0123456789abcdef", 100000),
            "FYWYKdNrDMWeKHAQSJe6Bo6UQ6TDdG1mLhkJIIYWrzcARmVqWPB03AxcICY/"
            "rEpWpInxPqkChB6i1c8u6PCOgQ==");
  EXPECT_EQ(
      sha512_hash("Größe 😀", std::string_view("\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17", 16), 3),
      "9yRKELIPP5kTcWkgL11EelfUaZWm1cWsDLaKa/pQ838zLIG9dwkGbrT4NVpPgxKEz80Wst2f6ulN2Ye5"
      "AmmDYA==");
}

TEST(Password, HasAShortHash) {
  const struct {
    const char* password;
    int hash;
  } cases[] = {
      {"password", 0x83AF},        {"a", 0xCE88},
      {"Größe €", 0x81EA},         {"абв", 0xCF32},  // what the code page lacks counts as "?"
      {"xxxxxxxxxxxxxxx", 0xCE44},
  };
  for (const auto& [password, hash] : cases) EXPECT_EQ(short_hash(password), hash) << password;
}

TEST(Password, GetsASaltOfItsOwn) {
  const PasswordHash one = hash_password("secret", PasswordForm::kSha512);
  const PasswordHash other = hash_password("secret", PasswordForm::kSha512);
  EXPECT_EQ(one.algorithm, "SHA-512");
  EXPECT_EQ(one.salt.size(), 24U);
  EXPECT_NE(one.salt, other.salt);
  EXPECT_NE(one.value, other.value);
  EXPECT_EQ(hash_password("", PasswordForm::kSha512), PasswordHash());
  EXPECT_EQ(hash_password("a", PasswordForm::kShortHash), (PasswordHash{{}, {}, {}, 0, 0xCE88}));
}

}  // namespace
}  // namespace engine
