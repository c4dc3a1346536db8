// A book with a sheet, as the tests of the interface begin.
#pragma once

#include <memory>
#include <string>

#include "platform/libxl/libxl.h"

struct ReleaseBook {
  void operator()(libxl::Book* book) const { book->release(); }
};
using OwnedBook = std::unique_ptr<libxl::Book, ReleaseBook>;

struct Stage {
  explicit Stage(libxl::Book* made = xlCreateXMLBookW())
      : book(made), sheet(made->addSheet(L"Data")) {}

  std::string message() const { return book->errorMessage(); }

  // Saves the book and loads the bytes into it again. The sheet is the one at position 0.
  bool reload() {
    const char* data = nullptr;
    unsigned size = 0;
    if (!book->saveRaw(&data, &size)) return false;
    const std::string bytes(data, size);
    if (!book->loadRaw(bytes.data(), size)) return false;
    sheet = book->getSheet(0);
    return sheet != nullptr;
  }

  OwnedBook book;
  libxl::Sheet* sheet;
};
