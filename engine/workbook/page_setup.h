// How a sheet prints.
#pragma once

#include <string>

namespace engine {

// Margins are in inches. The defaults are those of a sheet that says nothing of its pages.
struct PageSetup {
  double left_margin = 0.7;
  double right_margin = 0.7;
  double top_margin = 0.75;
  double bottom_margin = 0.75;
  double header_margin = 0.3;
  double footer_margin = 0.3;
  std::string header;  // of all pages that have none of their own, with its codes
  std::string footer;
  int paper = 0;  // a number that all formats and printers share; 0 is the printer's own
  int zoom = 100;
  // When fitted, the sheet is scaled to pages and the zoom counts for nothing. 0 pages stand for as
  // many as there are.
  bool fitted = false;
  int pages_wide = 1;
  int pages_tall = 1;
  bool landscape = false;
  bool gridlines = false;
  bool headings = false;  // numbers of rows, letters of columns
  bool centered_across = false;
  bool centered_down = false;

  friend bool operator==(const PageSetup&, const PageSetup&) = default;
};

}  // namespace engine
