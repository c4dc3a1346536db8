// The five CoreFoundation calls by which a plug-in reads its localized texts.
//
// On a Mac this is the system's own framework. Elsewhere a stand-in of the same names reads the
// table <folder of the plug-in's file>/Resources/en.lproj/<table>.strings.
#pragma once

#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#else

#include <cstdint>

using CFTypeRef = const void*;
using CFIndex = long;
using UniChar = std::uint16_t;
using CFAllocatorRef = const struct OpaqueAllocator*;
using CFDictionaryRef = const struct OpaqueDictionary*;
using CFStringRef = const struct OpaqueString*;

// The path of the plug-in's file as zero-terminated UTF-8, seen as a bundle; on Windows the
// plug-in's module as well. Null stands for the file that this code is part of.
using CFBundleRef = struct OpaqueBundle*;

struct CFRange {
  CFIndex location;
  CFIndex length;
};

inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;

inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

extern "C" {

// A string that lives as long as the program, made of UTF-8. Equal bytes give the same object.
CFStringRef CFSTR(const char* text);

// The text of a key, which the caller releases. A key that is not in the table, or a table that
// cannot be read, gives the default value itself, retained, or the key when that is null.
CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key,
                                        CFStringRef default_value, CFStringRef table);

// Knows the conversions %@ (a string), %ld (a long) and %%; other text is copied.
CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options,
                                     CFStringRef format, ...);

// Counts UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);

// The range lies within the string.
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

void CFRelease(CFTypeRef object);

}  // extern "C"

#endif
