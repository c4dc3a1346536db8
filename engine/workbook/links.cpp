#include "engine/workbook/links.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "engine/text/fold.h"
#include "engine/text/percent.h"
#include "engine/text/utf8.h"
#include "engine/workbook/cell_ranges.h"

namespace engine {

namespace {

constexpr std::string_view kLocalFile = "file:///";
constexpr std::string_view kWeb = "www.";

bool is_ascii_letter(char c) { return lower_ascii(c) >= 'a' && lower_ascii(c) <= 'z'; }

bool begins_with(std::string_view text, std::string_view begin) {
  return equal_ignoring_case(text.substr(0, begin.size()), begin);
}

// Whether a text begins with the scheme of a URL. One letter before the colon names a drive.
bool has_scheme(std::string_view text) {
  const std::string_view scheme = text.substr(0, text.find(':'));
  const auto belongs = [](char c) {
    return is_ascii_letter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  };
  return scheme.size() < text.size() && scheme.size() >= 2 && is_ascii_letter(scheme.front()) &&
         std::ranges::all_of(scheme, belongs);
}

bool names_drive(std::string_view path) {
  return path.size() >= 2 && is_ascii_letter(path[0]) && path[1] == ':';
}

// The characters that stand escaped in URLs.
constexpr std::array<bool, 256> kEscaped = [] {
  std::array<bool, 256> escaped{};
  for (unsigned code = 0; code <= 0x20; ++code) escaped[code] = true;
  for (const char sign : std::string_view("\x7F\"<>[]^{}|`"))
    escaped[static_cast<unsigned char>(sign)] = true;
  return escaped;
}();

// The bytes of the character at the front if it stands escaped in URLs; else 0. Two that no XML
// holds are among them.
std::size_t escaped_bytes(std::string_view rest) {
  if (kEscaped[static_cast<unsigned char>(rest.front())]) return 1;
  return rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

std::string escape(std::string_view text, bool is_path) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    std::size_t escaped = escaped_bytes(text);
    if (is_path && (text.front() == '%' || text.front() == '#')) escaped = 1;
    for (const char byte : text.substr(0, escaped)) append_percent(out, byte);
    if (escaped == 0) out.push_back(text.front());
    text.remove_prefix(std::max<std::size_t>(escaped, 1));
  }
  return out;
}

}  // namespace

LinkTarget link_target(std::string_view text) {
  const std::size_t mark = text.find('#');
  LinkTarget made;
  made.target = text.substr(0, mark);
  if (mark != std::string_view::npos) made.location = text.substr(mark + 1);
  if (made.target.empty()) made.kind = LinkKind::kPlace;
  else if (has_scheme(made.target) || begins_with(made.target, kWeb)) made.kind = LinkKind::kUrl;
  else made.kind = LinkKind::kPath;
  return made;
}

std::string settled_link(std::string_view text) {
  const LinkTarget parts = link_target(text);
  if (parts.kind == LinkKind::kPlace) return std::string(text);
  std::string made;
  if (parts.kind == LinkKind::kPath) made = parts.target;
  else if (auto path = local_path(parts.target)) made = *std::move(path);
  else if (begins_with(parts.target, kWeb))
    made = escape_url("http://" + std::string(parts.target));
  else made = escape_url(parts.target);
  if (!parts.location.empty()) made.append("#").append(parts.location);
  return made;
}

std::string escape_url(std::string_view text) { return escape(text, false); }
std::string escape_path(std::string_view path) { return escape(path, true); }

std::string path_target(std::string_view path) {
  const std::string escaped = escape_path(path);
  if (path.starts_with('/')) return "file://" + escaped;
  return path.starts_with("\\\\") || names_drive(path) ? "file:///" + escaped : escaped;
}

std::string unescape_path(std::string_view text) {
  std::string path = decode_percent(text);
  const bool is_text = is_utf8(path) && path.find('\0') == std::string::npos;
  return is_text ? path : std::string(text);
}

std::optional<std::string> local_path(std::string_view url) {
  if (!begins_with(url, kLocalFile)) return std::nullopt;
  std::string path = unescape_path(url.substr(kLocalFile.size()));
  const bool is_complete = names_drive(path) || path.starts_with('\\') || path.starts_with('/');
  if (!is_complete) path.insert(0, 1, '/');
  return path;
}

// What may throw comes first: a slot that nothing names any more is never looked at.
void Links::add(Link link) {
  if (order_.size() == order_.capacity()) order_.reserve(2 * order_.size() + 1);
  const bool reused = !free_.empty();
  const std::uint32_t slot = reused ? free_.back() : static_cast<std::uint32_t>(slots_.size());
  if (!reused) slots_.emplace_back();
  places_.insert(place(link.cells, slot));
  if (reused) free_.pop_back();
  slots_[slot] = std::move(link);
  order_.push_back(slot);
}

bool Links::holds(const CellRange& cells) const {
  const auto at = places_.lower_bound(place(cells, 0));
  return at != places_.end() && slots_[std::get<4>(*at)].cells == cells;
}

void Links::put(Link link) {
  const auto begin = places_.lower_bound(place(link.cells, 0));
  const auto end = places_.upper_bound(place(link.cells, kLastSlot));
  if (begin == end) return add(std::move(link));
  if (std::next(begin) != end) keep_first(link.cells);
  slots_[std::get<4>(*places_.lower_bound(place(link.cells, 0)))] = std::move(link);
}

void Links::keep_first(const CellRange& cells) {
  const auto is_one = [&](std::uint32_t slot) { return slots_[slot].cells == cells; };
  const auto first = std::ranges::find_if(order_, is_one);
  free_.reserve(order_.size() + free_.size());
  for (auto at = std::next(first); at != order_.end(); ++at) {
    if (!is_one(*at)) continue;
    places_.erase(place(cells, *at));
    free_.push_back(*at);
  }
  const auto rest = std::ranges::subrange(std::next(first), order_.end());
  order_.erase(std::ranges::remove_if(rest, is_one).begin(), order_.end());
}

void Links::remove(std::size_t index) {
  const std::uint32_t slot = order_[index];
  free_.push_back(slot);
  places_.erase(place(slots_[slot].cells, slot));
  slots_[slot] = Link();
  order_.erase(order_.begin() + static_cast<std::ptrdiff_t>(index));
}

bool operator==(const Links& a, const Links& b) {
  const auto link_of = [](const Links& links) {
    return [&links](std::uint32_t slot) -> const Link& { return links.slots_[slot]; };
  };
  return std::ranges::equal(a.order_, b.order_, {}, link_of(a), link_of(b));
}

Links moved(const Links& links, const formula::Move& move, const Grid& grid) {
  Links made;
  for (std::size_t index = 0; index < links.size(); ++index) {
    const auto cells = moved_range(links[index].cells, move, grid);
    if (cells) made.add({*cells, links[index].text, links[index].details});
  }
  return made;
}

}  // namespace engine
