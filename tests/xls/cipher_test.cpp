// Streams that are encrypted with the password that all programs know.
#include "engine/xls/cipher.h"

#include <gtest/gtest.h>

#include <bit>

#include "engine/package/file_error.h"
#include "engine/xls/records.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): records are made of its pieces

std::string bytes_of(std::string_view hexadecimal) {
  std::string bytes;
  for (std::size_t at = 0; at < hexadecimal.size(); at += 2)
    bytes += static_cast<char>(std::stoi(std::string(hexadecimal.substr(at, 2)), nullptr, 16));
  return bytes;
}

struct Case {
  const char* what;
  std::string file_pass;
};

// What programs say of the encryption, and what follows from the published rules.
const Case kCases[] = {
    {"first form",
     bytes_of("010001000100c9a3013ffe8c0e16dd25d13fffb2d17e89cea9acaf15009c5bf2742a311ea2be"
              "be88dcdd7a6ecda93eb96faa70ab8d52")},
    {"second form, 128 bits",
     bytes_of("010002000200040000002400000004000000000000000168000004800000800000000100000000000000"
              "000000005800000010000000000102030405060708090a0b0c0d0e0fa024a295d910dcd16b2b69c9dfef"
              "19191400000074a70eb0e7278136e857318b9e9a13d19115d50b")},
    {"second form, 40 bits",
     bytes_of("010002000200040000002400000004000000000000000168000004800000280000000100000000000000"
              "000000005800000010000000000102030405060708090a0b0c0d0e0fc872728f14b55d849b7dde3f7cfd"
              "96a714000000d5e6c96d597b070d79bf31b1599eddf2ece8d44b")},
    {"oldest form", bytes_of("000059b30a9a")},
};

// Encrypts what stands behind the record that says so. RC4 does it as it decrypts; the oldest form
// turns the bits of a byte and mixes it with one that follows from the password.
std::string encrypted(std::string stream, const std::string& file_pass) {
  const std::string mixed = bytes_of("876b9ae21ee305621e699660986e9404");
  Cipher cipher = default_cipher(file_pass);
  for (std::size_t at = stream.find(record(kFilePass, file_pass)); at < stream.size();) {
    const std::uint16_t id = package::get16(stream, at);
    const std::size_t size = package::get16(stream, at + 2);
    const std::size_t begin = at + 4 + (id == kBoundSheet ? 4 : 0);
    at += 4 + size;
    if (id == kFilePass || id == kBof) continue;
    if (file_pass[0] != 0) {
      cipher.apply(begin, size, std::span(stream).subspan(begin, at - begin));
      continue;
    }
    for (std::size_t i = begin; i < at; ++i)
      stream[i] = static_cast<char>(std::rotl(static_cast<unsigned char>(stream[i]), 5) ^
                                    mixed[(i + size) % mixed.size()]);
  }
  return stream;
}

TEST(XlsCipher, OpensWhatTheKnownPasswordProtects) {
  std::string records;
  for (int row = 0; row < 200; ++row) records += cell(0x203, row, 0, 15, f64(row));
  for (const auto& [what, file_pass] : kCases) {
    SCOPED_TRACE(what);
    // The record stands in front of the list of sheets.
    std::string stream = stream_of({{"Data", records}}, record(0x22, u16(1)));
    const std::string first = record(kFilePass, file_pass);
    const std::size_t place = bof(5).size() + 4;
    const std::uint32_t begin = package::get32(stream, place);
    stream.replace(place, 4, u32(begin + first.size()));
    stream.insert(bof(5).size(), first);
    LoadedBook book(file_of(encrypted(stream, file_pass)));
    EXPECT_TRUE(book.book.date1904);
    EXPECT_EQ(book.book.sheets()[0]->name(), "Data");
    EXPECT_EQ(shown(book, 0, 0), "0.000000");
    EXPECT_EQ(shown(book, 199, 0), "199.000000");
  }
}

TEST(XlsCipher, RefusesOtherPasswordsAndKinds) {
  std::string other = kCases[0].file_pass;
  other[10] = static_cast<char>(other[10] ^ 1);
  std::string no_salt = kCases[1].file_pass;
  no_salt.resize(60);
  std::string long_key = kCases[1].file_pass;
  long_key[31] = '\x7F';
  for (const std::string& file_pass :
       {other, no_salt, long_key, std::string(), u16(0) + u32(0), u16(1) + u16(9) + u16(2)}) {
    try {
      default_cipher(file_pass);
      ADD_FAILURE();
    } catch (const package::FileError& error) {
      EXPECT_STREQ(error.what(), "is protected by a password");
    }
  }
}

}  // namespace
}  // namespace engine::xls
