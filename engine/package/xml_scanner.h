// Big parts token by token, without a tree.
//
// The scanner looks at each byte of a part about once and copies none: tokens are views into the
// reader's block. When a block ends amid a token, its beginning is moved in front of the next
// block. Tags are found by comparing 16 bytes at a time with the few characters that matter.
//
//   XmlScanner scanner(*archive.open(entry), entry.name);
//   while (scanner.next() != XmlScanner::Token::Finish) …
//
// Every Start has its End, also that of <c/>. Text comes as it stands in the part, including the
// white space between elements; text(scratch) decodes it. Comments, processing instructions and the
// declaration are passed over. A document type is refused, and so is what is not well-formed: end
// tags must match, and the part must not end early.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/block_reader.h"
#include "engine/package/xml_namespaces.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace engine::package {

struct XmlAttribute {
  std::string_view name;   // with its prefix
  std::string_view value;  // raw
};

class XmlScanner;

// The attributes of a start tag in order: while (attributes.next(attribute)) …
class XmlAttributes {
 public:
  XmlAttributes() = default;
  // `raw` is what stands between a tag's name and its end. What is no attribute makes the scanner
  // fail; without a scanner it ends the row.
  explicit XmlAttributes(std::string_view raw, const XmlScanner* scanner = nullptr)
      : at_(raw.data()), end_(raw.data() + raw.size()), scanner_(scanner) {}

  // False at the end.
  bool next(XmlAttribute& attribute);

  // The raw value of the attribute of this qualified name, searched from here on; null data
  // without.
  std::string_view find(std::string_view name) const;
  // The same by local name, under any prefix but not without one: r:id.
  std::string_view find_prefixed(std::string_view local) const;

 private:
  bool fail() const;
  void skip_blanks() {
    while (at_ != end_ && static_cast<unsigned char>(*at_) <= ' ') ++at_;
  }

  const char* at_ = nullptr;
  const char* end_ = nullptr;
  const XmlScanner* scanner_ = nullptr;
};

class XmlScanner {
 public:
  enum class Token : std::uint8_t { Start, End, Text, Finish };

  static constexpr std::size_t kMaxDepth = 256;
  static constexpr std::size_t kMaxToken = 64 * 1024 * 1024;

  // `part` names the part in errors. The reader must outlive the scanner.
  XmlScanner(BlockReader& reader, std::string_view part);

  // Views from the token before become invalid. Throws FileError.
  Token next();
  Token token() const { return token_; }

  // Of Start and End: the name; where the root element has a prefix, without that prefix.
  std::string_view name() const { return name_; }
  std::string_view qualified_name() const { return {qualified_, qualified_size_}; }

  // Of Start.
  XmlAttributes attributes() const { return XmlAttributes(attributes_, this); }
  bool self_closing() const { return self_closing_; }

  // The bytes of the token as they stand in the part. A self-closing element's are those of its
  // Start; its End has none.
  std::string_view raw() const { return {begin_, static_cast<std::size_t>(cursor_ - begin_)}; }

  // Of Text: as it stands, and decoded. Comments and CDATA sections divide a text into several. The
  // decoded text is a view of `scratch`, or of the part when there is nothing to decode.
  std::string_view raw_text() const { return text_; }
  std::string_view text(std::string& scratch) const;

  // A raw attribute value decoded, in the same way.
  std::string_view value(std::string_view raw, std::string& scratch) const;

  // These are called at a Start and end at its End. All bytes of the element, comments too; the
  // text of the element without that of elements in it, decoded.
  void skip_element();
  void append_element(std::string& out);
  void append_text(std::string& out);

  // The start tag of the root element, which declares the prefixes; known from the first Start on.
  std::string_view root_tag() const { return root_tag_; }
  // What the root declares a prefix to be; the empty prefix is that of bare names.
  Family root_family(std::string_view prefix) const;

  // How many elements are open, the one of a Start or End included.
  std::size_t depth() const { return depth_ + (token_ == Token::End ? 1 : 0); }

  // The bytes at hand behind the current token, for a caller that knows what usually stands there
  // and recognises it faster than token by token; empty after a self-closing Start. It consumes
  // whole elements and texts only, or one element's end with the start of another of the same name.
  std::string_view ahead() const {
    return self_closing_ ? std::string_view()
                         : std::string_view(cursor_, static_cast<std::size_t>(limit_ - cursor_));
  }
  void consume(std::size_t size) { cursor_ += size; }
  // Where in the part, as UTF-8, the bytes at hand behind the current token begin and end.
  std::uint64_t offset_ahead() const {
    return received_ - static_cast<std::uint64_t>(limit_ - cursor_);
  }
  std::uint64_t received() const { return received_; }

  // Offset of the token in the part, as UTF-8.
  std::uint64_t offset() const { return received_ - static_cast<std::uint64_t>(limit_ - begin_); }

  [[noreturn]] void fail(std::string_view what) const;

 private:
  // Names up to eight bytes are compared as one word; longer ones lie in names_ as a whole.
  struct Open {
    std::uint64_t head;
    std::uint32_t size;
    std::uint32_t name;
  };

  static std::uint64_t head_of(const char* name, std::size_t size);
  static const char* find_less(const char* at, const char* limit);

  Token start();
  Token end();
  Token text_token();
  Token finish();
  bool markup();
  void close_element();

  void open_root();
  char* simple_tag_end() const;
  char* careful_tag_end();
  Token end_with_care();
  char* find_terminator(std::string_view terminator, std::size_t skipped);
  void check_encoding() const;

  void begin();
  bool more();
  void take_large(std::string_view kept, std::string_view added);

  const std::string part_;
  BlockReader& reader_;
  char* begin_ = nullptr;   // of the token
  char* cursor_ = nullptr;  // behind it
  char* limit_ = nullptr;   // of the bytes at hand; a zero byte stands here
  std::string_view name_;
  const char* qualified_ = nullptr;
  std::size_t qualified_size_ = 0;
  std::string_view attributes_;
  std::string_view text_;
  std::size_t depth_ = 0;
  Token token_ = Token::Finish;
  bool self_closing_ = false;
  bool cdata_ = false;
  std::uint64_t received_ = 0;
  std::string* kept_ = nullptr;  // receives comments while an element is kept
  std::string names_;
  std::string root_tag_;
  std::string root_prefix_;  // with its colon
  std::vector<char> large_;  // the bytes at hand when they fit no block
  std::string carry_;
  std::array<Open, kMaxDepth> open_{};
};

inline bool XmlAttributes::next(XmlAttribute& attribute) {
  skip_blanks();
  if (at_ == end_) return false;
  const char* const name = at_;
  while (at_ != end_ && *at_ != '=' && static_cast<unsigned char>(*at_) > ' ') ++at_;
  attribute.name = {name, static_cast<std::size_t>(at_ - name)};
  skip_blanks();
  if (at_ == end_ || *at_ != '=' || attribute.name.empty()) return fail();
  ++at_;
  skip_blanks();
  if (at_ == end_ || (*at_ != '"' && *at_ != '\'')) return fail();
  const char quote = *at_++;
  const char* const value = at_;
  while (at_ != end_ && *at_ != quote) ++at_;
  if (at_ == end_) return fail();
  attribute.value = {value, static_cast<std::size_t>(at_ - value)};
  ++at_;
  return true;
}

// The first bytes of a name as one word; reads beyond the name, into the block's tailroom at worst.
inline std::uint64_t XmlScanner::head_of(const char* name, std::size_t size) {
  std::uint64_t word = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&word, name, sizeof word);
    return size >= sizeof word ? word : word & ((std::uint64_t{1} << (8 * size)) - 1);
  } else {
    std::memcpy(&word, name, size < sizeof word ? size : sizeof word);
    return word;
  }
}

// The first "<" from `at` on, or something at or behind the limit.
inline const char* XmlScanner::find_less(const char* at, const char* limit) {
#ifdef __SSE2__
  const __m128i less = _mm_set1_epi8('<');
  for (; at < limit; at += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, less));
    if (found != 0) return at + std::countr_zero(static_cast<unsigned>(found));
  }
#else
  while (at < limit && *at != '<') ++at;
#endif
  return at;
}

// The end of a tag whose quotes are all double ones and hold none of the other special characters;
// null when the tag is not that simple or not all at hand.
inline char* XmlScanner::simple_tag_end() const {
#ifdef __SSE2__
  const __m128i greater = _mm_set1_epi8('>');
  const __m128i less = _mm_set1_epi8('<');
  const __m128i quote = _mm_set1_epi8('"');
  const __m128i apostrophe = _mm_set1_epi8('\'');
  unsigned odd = 0;
  for (char* at = begin_ + 1; at < limit_; at += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const auto ends = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, greater)));
    const auto quotes = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, quote)));
    const auto others = static_cast<unsigned>(_mm_movemask_epi8(
        _mm_or_si128(_mm_cmpeq_epi8(bytes, less), _mm_cmpeq_epi8(bytes, apostrophe))));
    const unsigned before = ends == 0 ? 0xFFFFU : (ends & (0U - ends)) - 1;
    odd ^= static_cast<unsigned>(__builtin_parity(quotes & before));
    if ((others & before) != 0) return nullptr;
    if (ends != 0) {
      char* const end = at + std::countr_zero(ends);
      return odd == 0 && end < limit_ ? end : nullptr;
    }
  }
#endif
  return nullptr;
}

inline XmlScanner::Token XmlScanner::next() {
  if (self_closing_) {
    self_closing_ = false;
    begin_ = cursor_;
    close_element();
    return token_ = Token::End;
  }
  for (;;) {
    begin_ = cursor_;
    if (*begin_ == '<') {
      const char second = begin_[1];
      if (second == '\0' && begin_ + 1 == limit_) {
        if (!more()) fail("ends too early");
        continue;
      }
      if (second == '/') return token_ = end();
      if (second != '!' && second != '?') return token_ = start();
      if (markup()) return token_ = Token::Text;
    } else if (begin_ != limit_) {
      if (text_token() == Token::Text) return token_ = Token::Text;
    } else if (!more()) {
      return token_ = finish();
    }
  }
}

inline XmlScanner::Token XmlScanner::start() {
  char* stop = simple_tag_end();
  if (stop == nullptr) stop = careful_tag_end();
  cursor_ = stop + 1;
  const char* const name = begin_ + 1;
  const char* at = name;
  while (static_cast<unsigned char>(*at) > ' ' && *at != '/' && *at != '>') ++at;
  qualified_ = name;
  qualified_size_ = static_cast<std::size_t>(at - name);
  if (qualified_size_ == 0) fail("a tag has no name");
  self_closing_ = stop[-1] == '/';
  if (self_closing_) --stop;
  attributes_ = {at, static_cast<std::size_t>(stop - at)};
  if (depth_ == 0) open_root();
  name_ = qualified_name();
  if (!root_prefix_.empty() && name_.starts_with(root_prefix_)) {
    name_.remove_prefix(root_prefix_.size());
  }
  if (depth_ == kMaxDepth) fail("nests too deep");
  auto& open = open_[depth_++];
  open.head = head_of(qualified_, qualified_size_);
  open.size = static_cast<std::uint32_t>(qualified_size_);
  open.name = static_cast<std::uint32_t>(names_.size());
  if (qualified_size_ > sizeof open.head) names_.append(qualified_, qualified_size_);
  return Token::Start;
}

inline XmlScanner::Token XmlScanner::end() {
  if (depth_ == 0) return end_with_care();
  const auto& open = open_[depth_ - 1];
  char* const name = begin_ + 2;
  if (open.size > sizeof open.head || open.size >= static_cast<std::size_t>(limit_ - begin_) ||
      name + open.size >= limit_ || name[open.size] != '>' ||
      head_of(name, open.size) != open.head) {
    return end_with_care();
  }
  cursor_ = name + open.size + 1;
  qualified_ = name;
  qualified_size_ = open.size;
  name_ = qualified_name();
  if (!root_prefix_.empty() && name_.starts_with(root_prefix_)) {
    name_.remove_prefix(root_prefix_.size());
  }
  --depth_;
  return Token::End;
}

inline void XmlScanner::close_element() {
  --depth_;
  if (open_[depth_].size > sizeof open_[depth_].head) names_.resize(open_[depth_].name);
}

}  // namespace engine::package
