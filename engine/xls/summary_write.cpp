// A stream of properties: a head, the kind of the set, then the set. That is its size, number and
// place of each property, and the properties, each its type and value.
#include "engine/xls/summary_write.h"

#include <string_view>
#include <vector>

#include "engine/package/little_endian.h"

namespace engine::xls {

namespace {

using package::put16;
using package::put32;
using package::put64;

constexpr std::string_view kSummaryKind{
    "\xE0\x85\x9F\xF2\xF9\x4F\x68\x10\xAB\x91\x08\x00\x2B\x27\xB3\xD9", 16};
constexpr std::string_view kDocumentKind{
    "\x02\xD5\xCD\xD5\x9C\x2E\x1B\x10\x93\x97\x08\x00\x2B\x2C\xF9\xAE", 16};

enum PropertyType : std::uint32_t { kShort = 2, kText = 30, kTime = 64 };

struct Property {
  std::uint32_t number;
  std::string value;  // with its type, a multiple of four bytes
};

Property code_page() {
  constexpr std::uint32_t kWestern = 1252;
  std::string value;
  put32(value, kShort);
  put32(value, kWestern);
  return {1, value};
}

Property text(std::uint32_t number, std::string_view text) {
  std::string value;
  put32(value, kText);
  put32(value, text.size() + 1);
  value.append(text).append(1, '\0');
  value.resize((value.size() + 3) / 4 * 4);
  return {number, value};
}

// Times count tenths of a microsecond from 1601.
Property time(std::uint32_t number, std::int64_t seconds) {
  constexpr std::int64_t kFrom1601 = 11644473600;
  std::string value;
  put32(value, kTime);
  put64(value, static_cast<std::uint64_t>(seconds + kFrom1601) * 10000000);
  return {number, value};
}

std::string stream(std::string_view kind, const std::vector<Property>& properties) {
  constexpr std::uint32_t kSystem = 0x00020006;
  constexpr std::uint32_t kSetAt = 48;
  std::string out;
  put16(out, 0xFFFE);
  put16(out, 0);
  put32(out, kSystem);
  out.append(16, '\0');
  put32(out, 1);
  out.append(kind);
  put32(out, kSetAt);
  std::string values;
  std::string list;
  const std::size_t values_at = 8 + 8 * properties.size();
  for (const auto& [number, value] : properties) {
    put32(list, number);
    put32(list, values_at + values.size());
    values += value;
  }
  put32(out, values_at + values.size());
  put32(out, properties.size());
  return out.append(list).append(values);
}

}  // namespace

std::string summary(std::int64_t created) {
  enum Number : std::uint32_t { kCreated = 12, kSaved = 13, kApplication = 18 };
  return stream(kSummaryKind, {code_page(), time(kCreated, created), time(kSaved, created),
                               text(kApplication, "Vornelix")});
}

std::string document_summary() { return stream(kDocumentKind, {code_page()}); }

}  // namespace engine::xls
