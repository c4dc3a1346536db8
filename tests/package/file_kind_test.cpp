#include "engine/package/file_kind.h"

#include <gtest/gtest.h>

#include <string_view>

namespace engine::package {
namespace {

TEST(FileKind, IsToldFromTheFirstBytes) {
  using std::string_view_literals::operator""sv;
  constexpr struct {
    std::string_view bytes;
    FileKind kind;
  } kCases[] = {
      {""sv, FileKind::Empty},
      {"PK\x03\x04..."sv, FileKind::Zip},
      {"PK\x05\x06..."sv, FileKind::Zip},
      {"PK"sv, FileKind::Other},
      {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1..."sv, FileKind::CompoundFile},
      {"\x09\x08\x08\x00\x00\x05"sv, FileKind::BareStream},
      {"\x09\x00\x04\x00\x07\x00"sv, FileKind::Excel2},
      {"<?xml version='1.0'?><Workbook/>"sv, FileKind::Xml},
      {"\xEF\xBB\xBF\r\n<?xml?>"sv, FileKind::Xml},
      {"\xFF\xFE<\0?\0x\0m\0l\0"sv, FileKind::Xml},
      {"<?xml version='1.0'?>\n<html>"sv, FileKind::Html},
      {"  <HTML>"sv, FileKind::Html},
      {"<!DOCTYPE html>"sv, FileKind::Html},
      {"a;b;c\r\n"sv, FileKind::Other},
  };
  for (const auto& [bytes, kind] : kCases) {
    EXPECT_EQ(file_kind(*Source::from_bytes({bytes.begin(), bytes.end()})), kind) << bytes;
  }
}

}  // namespace
}  // namespace engine::package
