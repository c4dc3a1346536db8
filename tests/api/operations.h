// Every operation of books, sheets, formats, fonts and filters, to be called without knowing which
// it is.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/libxl/libxl.h"

struct Objects {
  libxl::Book* book = nullptr;
  libxl::Sheet* sheet = nullptr;
  libxl::Format* format = nullptr;
  libxl::Font* font = nullptr;
  libxl::AutoFilter* filter = nullptr;
  libxl::FilterColumn* column = nullptr;
};

// What arguments are made of: each is as its type says.
struct Round {
  int number;  // flags and enumerations, too
  double real;
  const wchar_t* text;
  const wchar_t* name;  // a text that a sheet may be called by
};

// A workbook to load, as a file and as bytes, a file to save to, and a picture.
struct Files {
  std::wstring source;
  std::string bytes;
  std::wstring target;
  std::wstring picture;
  std::string picture_bytes;
};

struct Call {
  Objects on;
  Objects given;
  Round round;
  const Files* files;
};

struct Operation {
  std::string_view name;  // "Book::load"
  // Gives the result as a number: of a pointer whether it is there, nothing is 0.
  double (*call)(const Call& call);

  bool of(std::string_view type) const {
    return name.starts_with(type) && name.substr(type.size()).starts_with("::");
  }
};

std::span<const Operation> every_operation();
