// Strings count their references; the last release frees them. Tables are parsed at the first
// question and kept; a lock guards the two caches, not the strings, which never change.
#include "platform/corefoundation/core_foundation.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "platform/corefoundation/bundle_file.h"
#include "platform/corefoundation/strings_table.h"

struct OpaqueString {
  explicit OpaqueString(std::u16string text) : units(std::move(text)) {}

  const std::u16string units;
  mutable std::atomic<long> references = 1;
};

namespace {

using corefoundation::bundle_file;
using corefoundation::parse_strings_table;
using corefoundation::StringsTable;
using corefoundation::utf16_from_utf8;

CFStringRef make_string(std::u16string text) { return new OpaqueString(std::move(text)); }

CFStringRef retain(CFStringRef string) {
  string->references.fetch_add(1, std::memory_order_relaxed);
  return string;
}

std::filesystem::path table_path(CFBundleRef bundle, CFStringRef table) {
  return bundle_file(bundle).parent_path() / "Resources" / "en.lproj" /
         (table->units + u".strings");
}

// A table that is missing or damaged has no entries, and is not tried again.
StringsTable read_table(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return parse_strings_table(bytes).value_or(StringsTable());
}

std::mutex& cache_lock() {
  static std::mutex lock;
  return lock;
}

const StringsTable& cached_table(const std::filesystem::path& path) {
  static std::map<std::filesystem::path, StringsTable> tables;
  const std::lock_guard guard(cache_lock());
  const auto known = tables.find(path);
  return known != tables.end() ? known->second
                               : tables.emplace(path, read_table(path)).first->second;
}

std::u16string decimal(long number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

}  // namespace

CFStringRef CFSTR(const char* text) {
  static std::map<std::string, OpaqueString, std::less<>> constants;
  const std::lock_guard guard(cache_lock());
  return &constants.try_emplace(text, utf16_from_utf8(text)).first->second;
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key,
                                        CFStringRef default_value, CFStringRef table) {
  const StringsTable& entries = cached_table(table_path(bundle, table));
  const auto entry = entries.find(key->units);
  if (entry != entries.end()) return make_string(entry->second);
  return retain(default_value != nullptr ? default_value : key);
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef, CFDictionaryRef, CFStringRef format, ...) {
  std::u16string text;
  va_list arguments;
  va_start(arguments, format);
  for (std::u16string_view rest = format->units; !rest.empty();) {
    std::size_t used = 2;
    if (rest.starts_with(u"%@")) {
      text += va_arg(arguments, CFStringRef)->units;
    } else if (rest.starts_with(u"%ld")) {
      text += decimal(va_arg(arguments, long));
      used = 3;
    } else if (rest.starts_with(u"%%")) {
      text += u'%';
    } else {
      text += rest[0];
      used = 1;
    }
    rest.remove_prefix(used);
  }
  va_end(arguments);
  return make_string(std::move(text));
}

CFIndex CFStringGetLength(CFStringRef string) { return static_cast<CFIndex>(string->units.size()); }

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
  const auto begin = string->units.begin() + range.location;
  std::copy(begin, begin + range.length, buffer);
}

// Constants of CFSTR keep the reference they are made with.
void CFRelease(CFTypeRef object) {
  const auto* const string = static_cast<CFStringRef>(object);
  if (string->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete string;
}
