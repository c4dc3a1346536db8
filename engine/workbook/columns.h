// What the columns of a sheet have besides their cells.
//
// Neighbours that share everything are one run, so that all columns of a sheet cost no more than
// one. Changing some columns of a run cuts it, and neighbours that have become alike grow together.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <set>

namespace engine {

// A run of columns. Widths are in characters as files store them, padding included.
struct ColumnProperties {
  int first = 0;
  int last = 0;
  std::optional<double> width;
  std::uint32_t style = 0;
  bool custom_width = false;
  bool hidden = false;
  bool best_fit = false;  // the width followed the contents when it was set
  bool auto_fit = false;  // the width is to follow the contents, whenever it is asked for
  bool collapsed = false;
  std::uint8_t outline_level = 0;
  std::uint32_t details = 0;  // kept for the codec: number of what else the file says of them

  friend bool operator==(const ColumnProperties&, const ColumnProperties&) = default;
};

class Columns {
  // By their last column, so that the first run that does not end before a column is a search away.
  struct Before {
    using is_transparent = void;
    bool operator()(const ColumnProperties& a, const ColumnProperties& b) const {
      return a.last < b.last;
    }
    bool operator()(const ColumnProperties& run, int column) const { return run.last < column; }
    bool operator()(int column, const ColumnProperties& run) const { return column < run.last; }
  };
  using Runs = std::set<ColumnProperties, Before>;

 public:
  using Edit = std::function<void(ColumnProperties& run)>;

  // Ascending, without overlap.
  Runs::const_iterator begin() const { return runs_.begin(); }
  Runs::const_iterator end() const { return runs_.end(); }
  bool empty() const { return runs_.empty(); }
  std::size_t size() const { return runs_.size(); }

  // The first that does not end before a column.
  Runs::const_iterator first_from(int column) const { return runs_.lower_bound(column); }

  // The run of a column; null when nothing is known of it.
  const ColumnProperties* find(int column) const {
    const auto found = first_from(column);
    return found != runs_.end() && found->first <= column ? &*found : nullptr;
  }

  // Behind all others, and never one with its neighbour.
  void append(const ColumnProperties& run) { runs_.insert(runs_.end(), run); }

  // Edits ranges of columns, one after the other; columns of which nothing is known included. All
  // ranges together are one without a gap. What throws has changed nothing.
  struct Change {
    int first = 0;
    int last = 0;
    Edit edit;
  };
  void change(std::initializer_list<Change> changes);

  // Edits each run as a whole; needs no memory. Which columns it is must stay.
  void change_all(const Edit& edit) noexcept;

 private:
  Runs runs_;
};

}  // namespace engine
