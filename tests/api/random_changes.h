// Changes of a book drawn by lot: every operation of the interface that changes a sheet or the list
// of sheets, with arguments that mostly fit.
#pragma once

#include <cstdint>
#include <random>
#include <string_view>

#include "platform/libxl/libxl.h"

// The same numbers everywhere for the same seed.
class Lot {
 public:
  explicit Lot(std::uint32_t seed) : engine_(seed) {}

  int below(int size) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(size)); }
  bool once_in(int size) { return below(size) == 0; }
  template <class Item, std::size_t kSize>
  const Item& of(const Item (&items)[kSize]) {
    return items[below(static_cast<int>(kSize))];
  }

 private:
  std::mt19937 engine_;
};

// The cells that changes are about.
inline constexpr int kChangedRows = 24;
inline constexpr int kChangedColumns = 12;

// Each makes one change and tells which. The same lot makes the same change of books that are
// alike. The book's message tells what came of it.
std::string_view change_sheet(libxl::Book& book, int sheet, Lot& lot);
// Of one of its sheets, which are all loaded, or of their list.
std::string_view change_book(libxl::Book& book, Lot& lot);
// A change that a book goes on to follow until it is saved, and the saved one no more: columns are
// as wide as what their cells show, fonts are the default one.
std::string_view change_until_saved(libxl::Book& book, int sheet, Lot& lot);
