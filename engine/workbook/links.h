// The hyperlinks of a sheet: each a range of cells and where it leads.
//
// A link's text says what kind of target it has, as callers write it:
//
//   #Sheet1!A1, #Name            a place in the book
//   https://…, mailto:…, www.…   a URL, with a place in it behind the first "#"
//   anything else                a path, relative to the book's folder or absolute, with a place
//                                in the file behind the first "#"
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine {

struct Link {
  CellRange cells;
  std::string text;
  std::uint32_t details = 0;  // kept for the codec: number of what the file says of it; 0: nothing

  friend bool operator==(const Link&, const Link&) = default;
};

enum class LinkKind : std::uint8_t { kPlace, kUrl, kPath };

// What a link's text consists of.
struct LinkTarget {
  LinkKind kind = LinkKind::kPlace;
  std::string_view target;    // empty for a place in the book
  std::string_view location;  // behind "#"
};
LinkTarget link_target(std::string_view text);

// The form in which a caller's text is kept, so that it reads the same before and after a save:
// a URL has its scheme and no character that none may hold, a path no "file:///" in front.
std::string settled_link(std::string_view text);

// With percent escapes for the characters that no URL holds; letters beyond ASCII stay. A path has
// its percent and number signs escaped, too.
std::string escape_url(std::string_view url);
std::string escape_path(std::string_view path);
// Without escapes; a text that would be none then is left alone.
std::string unescape_path(std::string_view text);
// The target that leads to a path: a URL for an absolute one, else the path itself with escapes.
std::string path_target(std::string_view path);
// The path that a URL of a file on this machine means; nothing for other URLs.
std::optional<std::string> local_path(std::string_view url);

// Links in their order, found by their place in it or by their cells.
class Links {
 public:
  std::size_t size() const { return order_.size(); }
  bool empty() const { return order_.empty(); }
  const Link& operator[](std::size_t index) const { return slots_[order_[index]]; }

  // Behind all others, which may lie on the same cells.
  void add(Link link);
  // In place of those on exactly the same cells, else behind all others.
  void put(Link link);
  bool holds(const CellRange& cells) const;
  void remove(std::size_t index);
  // Gives a link another text and its former one back.
  void exchange(std::size_t index, std::string& text) noexcept {
    slots_[order_[index]].text.swap(text);
  }

  friend bool operator==(const Links& a, const Links& b);

 private:
  static constexpr std::uint32_t kLastSlot = 0xFFFFFFFF;

  // The cells of a link and its slot.
  using Place = std::tuple<int, int, int, int, std::uint32_t>;

  static Place place(const CellRange& cells, std::uint32_t slot) {
    return {cells.row_first, cells.row_last, cells.column_first, cells.column_last, slot};
  }
  // Of several on the same cells, which a file may hold, leaves the first.
  void keep_first(const CellRange& cells);

  // A link stays in its slot as long as it lives, so that taking one out of the order moves numbers
  // only.
  std::vector<Link> slots_;
  std::vector<std::uint32_t> free_;
  std::vector<std::uint32_t> order_;
  std::set<Place> places_;
};

// The links after rows or columns were inserted or removed; those without any cell left are gone.
Links moved(const Links& links, const formula::Move& move, const Grid& grid);

}  // namespace engine
