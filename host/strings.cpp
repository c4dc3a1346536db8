#include "host/strings.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/corefoundation/core_foundation.h"

namespace {

constexpr unsigned long kAboutId = 65000;
constexpr unsigned long kAboutKind = 129;
constexpr unsigned long kOptionsId = 1;
constexpr unsigned long kOptionsKind = 131;

struct Release {
  void operator()(const void* object) const { CFRelease(object); }
};
using Owner = std::unique_ptr<const void, Release>;

CFStringRef string_of(const Owner& owner) { return static_cast<CFStringRef>(owner.get()); }

unsigned long id_of_kind(unsigned long kind) {
  if (kind == kAboutKind) return kAboutId;
  return kind == kOptionsKind ? kOptionsId : kind;
}

// The text is a format whose one argument is the version.
Owner with_version(const Owner& text) {
  return Owner(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, string_of(text),
                                        CFSTR(VORNELIX_VERSION)));
}

std::uint32_t find(const fmx::Text& text, const char* wanted) {
  const fmx::TextUniquePtr pattern;
  pattern->Assign(wanted, fmx::Text::kEncoding_UTF8);
  return text.Find(*pattern, 0);
}

// Deletes from a position that was found to the end.
void cut(fmx::Text& text, std::uint32_t position) {
  if (position != fmx::Text::kSize_Invalid) text.DeleteText(position);
}

}  // namespace

long Sub_LoadString(unsigned long id, unsigned short* buffer, long capacity, std::string) {
  if (!buffer || capacity < 2) return 0;
  const Owner key(
      CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%ld"), static_cast<long>(id)));
  if (!key) return 0;
  auto* const bundle = static_cast<CFBundleRef>(gFMX_ExternCallPtr->instance);
  Owner text(
      CFBundleCopyLocalizedString(bundle, string_of(key), string_of(key), CFSTR("Vornelix")));
  // A missing string comes back as the key itself.
  if (!text || text == key) return 0;

  const long length = CFStringGetLength(string_of(text));
  if (length >= capacity - 1) return 0;
  if (id == kAboutId || id == kAboutKind) text = with_version(text);
  if (!text) return 0;

  // The length is that of the format: a longer text is cut to it.
  const long count = std::min(length, static_cast<long>(CFStringGetLength(string_of(text))));
  CFStringGetCharacters(string_of(text), CFRangeMake(0, count), buffer);
  buffer[count] = 0;
  return count;
}

void Do_GetString(unsigned long which, unsigned long, unsigned long capacity,
                  unsigned short* buffer) {
  Sub_LoadString(id_of_kind(which), buffer, static_cast<long>(capacity), "");
}

void Do_GetString(unsigned long id, fmx::TextUniquePtr& text, int part) {
  constexpr std::size_t kCapacity = 4096;
  std::array<unsigned short, kCapacity> buffer{};
  Sub_LoadString(id_of_kind(id), buffer.data(), static_cast<long>(buffer.size()), "");
  text->AssignUnicode(buffer.data());

  // A text that is not found is at the highest position, so the lower of two is the first found.
  const std::uint32_t bar = find(*text, "|");
  switch (part) {
    case kName:
      cut(*text, std::min(find(*text, " ("), bar));
      break;
    case kPrototype:
      cut(*text, bar);
      break;
    // Without a bar the count wraps to 0 and the whole text is the description.
    case kDescription:
      text->DeleteText(0, bar + 1);
      break;
    default:
      break;
  }
}
