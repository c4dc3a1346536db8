// The records of the version before: what becomes of each.
//
// Most stay as they are. Those that hold a text, a format or places in a sheet are laid out
// otherwise; some say what nobody needs any more, and some what nothing here is made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/xls/fields.h"
#include "engine/xls/older_texts.h"

namespace engine::xls {

// The substreams in which a record says something.
enum OlderPlace : std::uint8_t { kInGlobals = 1, kInSheets = 2, kAnywhere = 3 };

struct OlderRecord {
  enum class Fate : std::uint8_t {
    kKept,
    kDropped,
    kChanged,  // by itself
    kOwn,      // as its reader decides, who knows the others
    kLost,
  };

  std::uint16_t id;
  OlderPlace where;
  Fate fate;
  // For kChanged: its data now; nothing for what makes no sense.
  std::optional<std::string> (*change)(Fields in, const OlderTexts& texts) = nullptr;
  const char* what = nullptr;  // for kLost
};

// Null for one that is not known.
const OlderRecord* find_older_record(std::uint16_t id);

}  // namespace engine::xls
