#include "engine/system/digest.h"

#include <gtest/gtest.h>

namespace engine::system {
namespace {

std::string hexadecimal(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes)
    for (const int shift : {4, 0}) text += "0123456789abcdef"[byte >> shift & 15];
  return text;
}

// The results that the standards of the digests give for the text "abc".
TEST(Digest, IsThatOfTheStandards) {
  EXPECT_EQ(hexadecimal(view_of(md5("abc"))), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(hexadecimal(view_of(sha1("abc"))), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(hexadecimal(view_of(sha512("abc"))),
            "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
            "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
}

}  // namespace
}  // namespace engine::system
