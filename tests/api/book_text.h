// All that can be read of a book through its interface, as lines of text to compare.
#pragma once

#include <string>
#include <vector>

#include "platform/libxl/libxl.h"

// Rows and columns from 0 on that are read cell by cell, used or not.
struct ReadArea {
  int rows = 0;
  int columns = 0;
};

// Cells that are used outside of the area count too. Sheets that are not loaded are told by name.
std::vector<std::string> text_of(libxl::Book& book, const ReadArea& area);

// The first lines in which two books differ; empty when they are alike.
std::string difference(const std::vector<std::string>& one, const std::vector<std::string>& other);
