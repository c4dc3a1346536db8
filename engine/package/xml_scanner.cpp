#include "engine/package/xml_scanner.h"

#include <algorithm>

#include "engine/package/file_error.h"
#include "engine/package/xml_text.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"

namespace engine::package {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kCdata = "<![CDATA[";
constexpr std::string_view kComment = "<!--";
constexpr std::string_view kDoctype = "<!DOCTYPE";
constexpr std::string_view kEncodings[] = {"utf-8", "utf8", "us-ascii", "ascii", "utf-16"};

}  // namespace

bool XmlAttributes::fail() const {
  if (scanner_ != nullptr) scanner_->fail("an attribute is not well-formed");
  return false;
}

std::string_view XmlAttributes::find(std::string_view name) const {
  XmlAttributes rest = *this;
  for (XmlAttribute attribute; rest.next(attribute);) {
    if (attribute.name == name) return attribute.value;
  }
  return {};
}

std::string_view XmlAttributes::find_prefixed(std::string_view local) const {
  XmlAttributes rest = *this;
  for (XmlAttribute attribute; rest.next(attribute);) {
    if (local_name(attribute.name) == local && attribute.name.size() > local.size()) {
      return attribute.value;
    }
  }
  return {};
}

XmlScanner::XmlScanner(BlockReader& reader, std::string_view part) : part_(part), reader_(reader) {
  begin();
}

void XmlScanner::fail(std::string_view what) const {
  throw_damaged(part_ + ", byte " + std::to_string(offset()), what);
}

// The first bytes tell how the part is encoded. UTF-16 is read whole and made UTF-8.
void XmlScanner::begin() {
  take_large({}, {});
  while (limit_ - begin_ < 4 && more()) continue;
  const std::string_view start(begin_, static_cast<std::size_t>(limit_ - begin_));
  if (looks_like_utf16(start)) {
    std::string all(start);
    for (auto block = reader_.next(); !block.empty(); block = reader_.next()) {
      all.append(block.data(), block.size());
    }
    if (!xml_to_utf8(all)) fail("UTF-16 text is not well-formed");
    received_ = all.size();
    take_large(all, {});
  } else if (start.starts_with("\xEF\xBB\xBF")) {
    cursor_ = begin_ + 3;
  }
}

// Makes the two texts the bytes at hand.
void XmlScanner::take_large(std::string_view kept, std::string_view added) {
  const auto cursor = cursor_ - begin_;
  const bool lies_there = !large_.empty() && kept.data() == large_.data();
  large_.resize(kept.size() + added.size() + BlockReader::kTailroom);
  if (!lies_there) std::copy(kept.begin(), kept.end(), large_.data());
  std::copy(added.begin(), added.end(), large_.data() + kept.size());
  begin_ = large_.data();
  cursor_ = begin_ + cursor;
  limit_ = begin_ + kept.size() + added.size();
  *limit_ = '\0';
}

// Brings the next block to hand, behind what is there of the token. False at the end.
bool XmlScanner::more() {
  const auto kept = static_cast<std::size_t>(limit_ - begin_);
  const auto cursor = cursor_ - begin_;
  if (kept > kMaxToken) fail("a tag or text is too long");
  const bool in_large = begin_ == large_.data();
  if (!in_large) carry_.assign(begin_, kept);
  const auto block = reader_.next();
  received_ += block.size();
  if (in_large && kept > BlockReader::kHeadroom) {
    take_large({begin_, kept}, {block.data(), block.size()});
  } else if (block.empty() || kept > BlockReader::kHeadroom) {
    take_large(in_large ? std::string_view(begin_, kept) : carry_, {block.data(), block.size()});
  } else {
    char* const front = block.data() - kept;
    std::copy_n(in_large ? begin_ : carry_.data(), kept, front);
    begin_ = front;
    cursor_ = front + cursor;
    limit_ = block.data() + block.size();
    *limit_ = '\0';
  }
  return !block.empty();
}

XmlScanner::Token XmlScanner::text_token() {
  const char* less = find_less(begin_, limit_);
  while (less >= limit_) {
    const auto seen = limit_ - begin_;
    if (!more()) {
      less = limit_;
      break;
    }
    less = find_less(begin_ + seen, limit_);
  }
  cursor_ = begin_ + (less - begin_);
  text_ = raw();
  cdata_ = false;
  if (depth_ > 0) return less == limit_ ? finish() : Token::Text;
  if (text_.find_first_not_of(kBlanks) != std::string_view::npos) {
    fail("text stands outside of the root element");
  }
  return Token::Finish;
}

XmlScanner::Token XmlScanner::finish() {
  if (depth_ > 0) fail("ends too early");
  if (root_tag_.empty()) fail("holds no element");
  return Token::Finish;
}

void XmlScanner::open_root() {
  if (!root_tag_.empty()) fail("a second root element");
  root_tag_ = raw();
  const auto name = qualified_name();
  const auto colon = name.find(':');
  if (colon != std::string_view::npos) root_prefix_ = name.substr(0, colon + 1);
}

// A tag's end with quotes of both kinds in which anything but "<" may stand.
char* XmlScanner::careful_tag_end() {
  char quote = '\0';
  for (std::size_t at = 1;; ++at) {
    if (begin_ + at == limit_ && !more()) fail("ends too early");
    const char c = begin_[at];
    if (c == '<') fail("a tag does not end");
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '>') {
      return begin_ + at;
    } else if (c == '"' || c == '\'') {
      quote = c;
    }
  }
}

// An end tag with blanks in it, with a long name, not all at hand, or wrong.
XmlScanner::Token XmlScanner::end_with_care() {
  char* const stop = careful_tag_end();
  cursor_ = stop + 1;
  std::string_view name(begin_ + 2, static_cast<std::size_t>(stop - begin_ - 2));
  name = name.substr(0, name.find_last_not_of(kBlanks) + 1);
  if (depth_ == 0) fail("an end tag without a start tag");
  const auto& open = open_[depth_ - 1];
  const bool same =
      open.size > sizeof open.head
          ? name == std::string_view(names_).substr(open.name)
          : name.size() == open.size && head_of(name.data(), name.size()) == open.head;
  if (!same) fail("an end tag does not match its start tag");
  qualified_ = name.data();
  qualified_size_ = name.size();
  name_ = name;
  if (!root_prefix_.empty() && name_.starts_with(root_prefix_)) {
    name_.remove_prefix(root_prefix_.size());
  }
  close_element();
  return Token::End;
}

// What begins with "<!" or "<?". True when it is a text.
bool XmlScanner::markup() {
  while (static_cast<std::size_t>(limit_ - begin_) < kCdata.size() && more()) continue;
  const std::string_view start(begin_, static_cast<std::size_t>(limit_ - begin_));
  if (start.starts_with(kCdata)) {
    if (depth_ == 0) fail("text stands outside of the root element");
    char* const stop = find_terminator("]]>", kCdata.size());
    text_ = {begin_ + kCdata.size(), static_cast<std::size_t>(stop - begin_) - kCdata.size()};
    cdata_ = true;
    return true;
  }
  if (start.starts_with(kDoctype)) fail("declares a document type");
  if (start.starts_with(kComment)) {
    find_terminator("-->", kComment.size());
  } else if (start.starts_with("<?")) {
    find_terminator("?>", 2);
    if (raw().starts_with("<?xml ")) check_encoding();
  } else {
    fail(start.size() < kCdata.size() ? "ends too early" : "unknown markup");
  }
  if (kept_ != nullptr) kept_->append(raw());
  return false;
}

// Ends the token behind the terminator and returns where that begins.
char* XmlScanner::find_terminator(std::string_view terminator, std::size_t skipped) {
  for (;;) {
    const std::string_view bytes(begin_, static_cast<std::size_t>(limit_ - begin_));
    const auto found = bytes.find(terminator, skipped);
    if (found != std::string_view::npos) {
      cursor_ = begin_ + found + terminator.size();
      return begin_ + found;
    }
    skipped = std::max(skipped, bytes.size() - std::min(bytes.size(), terminator.size() - 1));
    if (!more()) fail("ends too early");
  }
}

void XmlScanner::check_encoding() const {
  const auto encoding = XmlAttributes(raw().substr(5, raw().size() - 7)).find("encoding");
  if (encoding.empty()) return;
  const auto* const known =
      std::find(std::begin(kEncodings), std::end(kEncodings), lower_ascii(encoding));
  if (known == std::end(kEncodings)) {
    fail("is encoded as " + std::string(encoding.substr(0, 64)) + ", not as UTF-8 or UTF-16");
  }
}

std::string_view XmlScanner::text(std::string& scratch) const {
  if (is_plain_xml(text_)) return text_;
  scratch.clear();
  if (cdata_) {
    // Line ends become line feeds here too, but nothing is a reference.
    if (!is_utf8(text_)) fail("text is not UTF-8");
    for (std::size_t at = 0; at < text_.size(); ++at) {
      const bool ends_line = text_[at] == '\r';
      scratch += ends_line ? '\n' : text_[at];
      if (ends_line && text_.substr(at + 1).starts_with('\n')) ++at;
    }
  } else if (!decode_xml_text(text_, scratch)) {
    fail("text is not UTF-8 or refers to an unknown character");
  }
  return scratch;
}

std::string_view XmlScanner::value(std::string_view raw_value, std::string& scratch) const {
  if (is_plain_xml(raw_value) && raw_value.find_first_of("\t\n") == std::string_view::npos) {
    return raw_value;
  }
  scratch.clear();
  if (!decode_xml_attribute(raw_value, scratch)) {
    fail("an attribute is not UTF-8 or refers to an unknown character");
  }
  return scratch;
}

void XmlScanner::skip_element() {
  const auto target = depth_ - 1;
  while (next() != Token::End || depth_ != target) continue;
}

void XmlScanner::append_element(std::string& out) {
  const auto target = depth_ - 1;
  kept_ = &out;
  do {
    out.append(raw());
    next();
  } while (token_ != Token::End || depth_ != target);
  out.append(raw());
  kept_ = nullptr;
}

void XmlScanner::append_text(std::string& out) {
  const auto target = depth_ - 1;
  std::string scratch;
  while (next() != Token::End || depth_ != target) {
    if (token_ == Token::Text && depth_ == target + 1) out.append(text(scratch));
  }
}

Family XmlScanner::root_family(std::string_view prefix) const {
  if (prefix == "xml") return Family::Xml;
  const auto begin = root_tag_.find_first_of(" \t\r\n/>");
  const std::string_view rest =
      std::string_view(root_tag_).substr(std::min(begin, root_tag_.size()));
  const auto size = rest.size() - (rest.ends_with("/>") ? 2 : 1);
  const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
  std::string scratch;
  const auto uri = XmlAttributes(rest.substr(0, size)).find(name);
  if (uri.data() == nullptr) return prefix.empty() ? Family::None : Family::Unknown;
  return family_of(value(uri, scratch));
}

}  // namespace engine::package
