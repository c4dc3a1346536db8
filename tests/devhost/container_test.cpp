#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/parser.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

class Containers : public testing::Test {
 public:
  Containers() { std::filesystem::create_directories(folder_); }
  ~Containers() override { std::filesystem::remove_all(folder_); }

 protected:
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }

  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::string text_of(const std::string& calculation) {
    return utf8_from_utf16(
        evaluator_.evaluate(parse_calculation(utf16_from_utf8(calculation))).units());
  }

  std::vector<Failure> failures_;

 private:
  std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) /
      ("containers-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
  Evaluator evaluator_{[this](const Failure& failure) { failures_.push_back(failure); }};
};

std::string bytes(std::initializer_list<int> values) {
  std::string result;
  for (const int value : values) result += static_cast<char>(value);
  return result;
}

TEST_F(Containers, GetTheStreamsOfTheirFile) {
  const std::string png_start =
      bytes({0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0, 0, 0, 13, 'I', 'H', 'D', 'R'});
  struct Case {
    const char* name;
    std::string content;
    std::string streams;
  };
  const Case kCases[] = {
      {"a.txt", "abc", "FNAM 5\rFILE 3"},
      {"empty", "", "FNAM 5\rFILE 0"},
      {"größe.xlsx", "PK", "FNAM 12\rFILE 2"},
      {"a.png", png_start + bytes({0, 0, 1, 2, 0, 0, 0, 3}), "FNAM 5\rSIZE 4\rPNGf 24"},
      {"huge.png", png_start + bytes({0, 1, 0, 0, 0, 0, 0, 3}), "FNAM 8\rPNGf 24"},
      {"cut.png", png_start, "FNAM 7\rFILE 16"},
      {"a.gif", "GIF89a" + bytes({5, 0, 7, 0}), "FNAM 5\rSIZE 4\rGIFf 10"},
      {"a.jpg", bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 1, 2, 0xFF, 0xFF, 0xC2, 0, 11, 8, 0, 9, 1, 4}),
       "FNAM 5\rSIZE 4\rJPEG 18"},
      {"cut.jpg", bytes({0xFF, 0xD8, 0xFF, 0xE0, 0xFF, 0xFF, 1, 2, 3, 4, 5, 6}), "FNAM 7\rFILE 12"},
      {"zero.jpg", bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 0, 0xFF, 0xE1, 0, 0, 0, 0}),
       "FNAM 8\rFILE 12"},
      {"a.bmp", "BM" + std::string(16, '\0') + bytes({4, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}),
       "FNAM 5\rSIZE 4\rBMPf 26"},
  };
  for (const auto& [name, content, streams] : kCases) {
    SCOPED_TRACE(name);
    write(name, content);
    EXPECT_EQ(text_of("Host_Streams ( Host_ReadFile ( \"" + path(name) + "\" ) )"), streams);
  }
  EXPECT_TRUE(failures_.empty());
}

TEST_F(Containers, AreWrittenBackToFiles) {
  write("a.bin", bytes({0, 1, 2, 255}));
  write("b.bin", "old and longer");
  EXPECT_EQ(text_of("Let ( c = Host_ReadFile ( \"" + path("a.bin") +
                    "\" ) ; c & \" \" & IsEmpty ( c ) & \" \" & "
                    "Host_WriteFile ( c ; \"" +
                    path("b.bin") + "\" ) )"),
            "a.bin 0 4");
  EXPECT_EQ(read("b.bin"), bytes({0, 1, 2, 255}));
  EXPECT_FALSE(std::filesystem::exists(path("b.bin.new")));
  EXPECT_TRUE(failures_.empty());
}

TEST_F(Containers, TellWhyAFileFails) {
  write("a", "abc");
  struct Case {
    std::string calculation;
    int code;
    const char* part;
  };
  const Case kCases[] = {
      {"Host_ReadFile ( \"" + path("none") + "\" )", 100, "none\" cannot be read: No such file"},
      {"Host_ReadFile ( \"" + path("") + "\" )", 100, "cannot be read"},
      {R"(Host_WriteFile ( "text" ; ")" + path("b") + "\" )", 1412, "there is no container"},
      {"Host_WriteFile ( Host_ReadFile ( \"" + path("a") + "\" ) ; \"" + path("no/b") + "\" )", 800,
       "cannot be written: No such file"},
  };
  for (const auto& [calculation, code, part] : kCases) {
    SCOPED_TRACE(calculation);
    failures_.clear();
    EXPECT_EQ(text_of(calculation), "?");
    ASSERT_EQ(failures_.size(), 1U);
    EXPECT_EQ(failures_[0].code, code);
    EXPECT_NE(utf8_from_utf16(failures_[0].message).find(part), std::string::npos)
        << utf8_from_utf16(failures_[0].message);
  }
}

}  // namespace
}  // namespace devhost
