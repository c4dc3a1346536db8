// The names that a book defines, in the book's order, found by their text and scope.
//
// A named range is a name that stands for nothing but cells of one sheet. Which ranges a sheet has
// is known from the first question on and follows single changes; a change of many names forgets
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"

namespace engine {

class Sheet;

// A name that stands for a range, a constant or a formula.
struct DefinedName {
  std::string name;
  std::string definition;        // formula text without "="
  const Sheet* scope = nullptr;  // the only sheet that knows it; null: the whole book does
  bool hidden = false;
  std::string details;  // kept for the codec: what else the file says of the name
};

class DefinedNames {
 public:
  // `grid` is that of the book's sheets.
  explicit DefinedNames(const Grid& grid) : grid_(grid) {}
  DefinedNames(const DefinedNames&) = delete;
  DefinedNames& operator=(const DefinedNames&) = delete;
  DefinedNames(DefinedNames&&) = default;
  DefinedNames& operator=(DefinedNames&&) = delete;
  ~DefinedNames() = default;

  std::list<DefinedName>::const_iterator begin() const { return names_.begin(); }
  std::list<DefinedName>::const_iterator end() const { return names_.end(); }
  std::size_t size() const { return names_.size(); }
  bool empty() const { return names_.empty(); }

  // The name in that very scope, ignoring case; null without one. Of several, which a file may
  // hold, the first.
  const DefinedName* find(std::string_view name, const Sheet* scope) const;
  // Those of a sheet's scope, in their order.
  std::vector<const DefinedName*> of_scope(const Sheet& scope) const;

  // Behind all others.
  void add(DefinedName name);
  void define(const DefinedName& name, std::string definition);
  void remove(const DefinedName& name);
  void remove_scope(const Sheet& scope) noexcept;
  // Takes the names of others behind its own.
  void take(DefinedNames&& others) noexcept;
  // Gives a name another definition and its former one back.
  void exchange(const DefinedName& name, std::string& definition) noexcept;

  // The range that a name stands for; nothing when it stands for anything else, or belongs to the
  // file format.
  std::optional<formula::SheetRange> range_of(const DefinedName& name) const;
  std::optional<CellRange> range_of(const DefinedName& name, const Sheet& sheet) const;

  // A named range and its place among all names.
  using Ranged = std::pair<std::uint64_t, const DefinedName*>;
  // The named ranges of a sheet, in their order.
  const std::deque<Ranged>& ranges_on(const Sheet& sheet) const;
  // To be called when a sheet gets another name.
  void forget_ranges() noexcept { ranges_.reset(); }

 private:
  struct Place {
    std::list<DefinedName>::iterator at;
    std::uint64_t number;  // in the order
  };
  using Key = std::pair<const Sheet*, std::string>;  // scope and folded name
  using Places = std::multimap<Key, Place>;

  Places::iterator place(const DefinedName& name);
  // The folded name of the sheet whose ranges have the name among them; nothing while these are
  // not known.
  std::optional<std::string> sheet_of(const DefinedName& name) const;
  void enter_range(const std::optional<std::string>& sheet, const Place& place);
  void leave_range(const std::optional<std::string>& sheet, const Place& place) noexcept;

  Grid grid_;
  std::list<DefinedName> names_;
  Places places_;
  std::uint64_t last_number_ = 0;
  // By folded names of sheets. A deque, as names are often removed one after the other from an end.
  mutable std::optional<std::unordered_map<std::string, std::deque<Ranged>>> ranges_;
};

}  // namespace engine
