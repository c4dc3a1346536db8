// The tags of a VML part, one after the other.
//
// Such parts are not always well-formed: elements stay open, attributes lack quotes. So nothing
// here demands that tags match; what makes no sense is passed over as text, and prefixes mean what
// the declarations around them say as far as those can be told. The cost is that of the text's
// length whatever stands in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/package/xml_scanner.h"

namespace engine::xlsx {

enum class VmlFamily : std::uint8_t { kVml, kOffice, kExcel, kOther };

struct VmlNamespace {
  VmlFamily family = VmlFamily::kOther;
  std::string_view prefix;  // the usual one
  std::string_view uri;
};

// In the order of the families.
inline constexpr VmlNamespace kVmlNamespaces[] = {
    {VmlFamily::kVml, "v", "urn:schemas-microsoft-com:vml"},
    {VmlFamily::kOffice, "o", "urn:schemas-microsoft-com:office:office"},
    {VmlFamily::kExcel, "x", "urn:schemas-microsoft-com:office:excel"},
};

struct VmlTag {
  enum class Kind : std::uint8_t { kStart, kEmpty, kEnd };

  Kind kind = Kind::kStart;
  VmlFamily family = VmlFamily::kOther;
  std::size_t begin = 0;  // in the text
  std::size_t end = 0;
  std::string_view name;  // with its prefix
  package::XmlAttributes attributes;

  bool is(VmlFamily of, std::string_view local) const {
    return family == of && package::local_name(name) == local;
  }
  bool opens() const { return kind != Kind::kEnd; }
};

class VmlTags {
 public:
  explicit VmlTags(std::string_view text) : text_(text) {}

  // False at the end.
  bool next(VmlTag& tag);

 private:
  // An element that declares prefixes.
  struct Scope {
    std::string_view name;
    std::size_t inside = 0;  // elements of its name that are open in it
    std::vector<std::string_view> prefixes;
  };

  bool read_tag(std::size_t begin, VmlTag& tag) const;
  void enter(VmlTag& tag);
  void leave(const VmlTag& tag);
  void forget(const std::vector<std::string_view>& prefixes);
  VmlFamily family_of(std::string_view prefix) const;

  std::string_view text_;
  std::size_t at_ = 0;
  std::vector<Scope> scopes_;
  std::unordered_map<std::string_view, std::vector<VmlFamily>> meanings_;  // the last one holds
};

}  // namespace engine::xlsx
