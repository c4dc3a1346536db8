#include "engine/xlsx/vml_tags.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace engine::xlsx {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// What is no tag, up to its end.
constexpr std::pair<std::string_view, std::string_view> kPassedOver[] = {
    {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};

bool begins_name(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

VmlFamily family_of_uri(std::string_view uri) {
  const auto* const found = std::ranges::find(kVmlNamespaces, uri, &VmlNamespace::uri);
  return found == std::end(kVmlNamespaces) ? VmlFamily::kOther : found->family;
}

// The ">" of the tag that begins at the "<"; nothing when another tag begins before it.
std::optional<std::size_t> tag_end(std::string_view text, std::size_t begin) {
  for (std::size_t at = begin + 1; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '>') return at;
    if (c == '<') return std::nullopt;
    if (c != '"' && c != '\'') continue;
    const std::size_t close = text.find_first_of(c == '"' ? "\"<" : "'<", at + 1);
    if (close != std::string_view::npos && text[close] == c) {
      at = close;
      continue;
    }
    // A quote that nothing closes is none.
    const std::size_t end = text.find_first_of("<>", begin + 1);
    if (end == std::string_view::npos || text[end] == '<') return std::nullopt;
    return end;
  }
  return std::nullopt;
}

// The prefix that an attribute declares; empty for the default one, nothing for other attributes.
std::optional<std::string_view> declared_prefix(std::string_view name) {
  if (name == "xmlns") return std::string_view();
  if (!name.starts_with("xmlns:")) return std::nullopt;
  return name.substr(6);
}

}  // namespace

bool VmlTags::next(VmlTag& tag) {
  while ((at_ = text_.find('<', at_)) != std::string_view::npos) {
    const std::string_view rest = text_.substr(at_);
    const auto* const passed = std::ranges::find_if(
        kPassedOver, [rest](const auto& one) { return rest.starts_with(one.first); });
    if (passed != std::end(kPassedOver)) {
      at_ = text_.find(passed->second, at_ + passed->first.size());
      if (at_ == std::string_view::npos) break;
      continue;
    }
    if (!read_tag(at_, tag)) {
      ++at_;
      continue;
    }
    at_ = tag.end;
    if (tag.opens()) {
      enter(tag);
    } else {
      tag.family = family_of(package::prefix_of(tag.name));
      leave(tag);
    }
    return true;
  }
  at_ = text_.size();
  return false;
}

bool VmlTags::read_tag(std::size_t begin, VmlTag& tag) const {
  const bool closes = text_.substr(begin + 1, 1) == "/";
  const std::size_t name = begin + (closes ? 2 : 1);
  if (name >= text_.size() || !begins_name(text_[name])) return false;
  const auto end = tag_end(text_, begin);
  if (!end) return false;
  std::string_view inside = text_.substr(name, *end - name);
  const bool empty = !closes && inside.ends_with('/');
  if (empty) inside.remove_suffix(1);
  tag.kind = closes ? VmlTag::Kind::kEnd : empty ? VmlTag::Kind::kEmpty : VmlTag::Kind::kStart;
  tag.begin = begin;
  tag.end = *end + 1;
  tag.name = inside.substr(0, inside.find_first_of(kBlanks));
  tag.attributes = package::XmlAttributes(inside.substr(tag.name.size()));
  return true;
}

void VmlTags::enter(VmlTag& tag) {
  std::vector<std::string_view> prefixes;
  package::XmlAttributes attributes = tag.attributes;
  for (package::XmlAttribute one; attributes.next(one);) {
    const auto prefix = declared_prefix(one.name);
    if (!prefix) continue;
    prefixes.push_back(*prefix);
    meanings_[*prefix].push_back(family_of_uri(one.value));
  }
  tag.family = family_of(package::prefix_of(tag.name));
  if (tag.kind == VmlTag::Kind::kEmpty) forget(prefixes);
  else if (!prefixes.empty()) scopes_.push_back({tag.name, 0, std::move(prefixes)});
  else if (!scopes_.empty() && scopes_.back().name == tag.name) ++scopes_.back().inside;
}

void VmlTags::leave(const VmlTag& tag) {
  if (scopes_.empty() || scopes_.back().name != tag.name) return;
  if (scopes_.back().inside-- > 0) return;
  forget(scopes_.back().prefixes);
  scopes_.pop_back();
}

void VmlTags::forget(const std::vector<std::string_view>& prefixes) {
  for (const std::string_view prefix : prefixes) meanings_.find(prefix)->second.pop_back();
}

// Some writers declare nothing.
VmlFamily VmlTags::family_of(std::string_view prefix) const {
  const auto found = meanings_.find(prefix);
  if (found != meanings_.end() && !found->second.empty()) return found->second.back();
  const auto* const usual = std::ranges::find(kVmlNamespaces, prefix, &VmlNamespace::prefix);
  return usual == std::end(kVmlNamespaces) ? VmlFamily::kOther : usual->family;
}

}  // namespace engine::xlsx
