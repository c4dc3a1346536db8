// External functions that pack and unpack dates and colours by a book's rules.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Book;

// Seconds are the finest unit that the host can pass.
double date_pack(Book& book, int year, int month, int day, int hour, int min, int sec) {
  return book.datePack(year, month, day, hour, min, sec, 0);
}

// The fourth parameter and those after it are what month, day, hour and minute hold before the
// call, so they show where the book leaves a value unwritten; the third is not read. The last one
// lies past the most that the host passes and always reads 0.
short date_unpack(const fmx::DataVect& params, fmx::Data& result) {
  const auto seed = [&](unsigned index) {
    return static_cast<int>(ParameterAsLong(params, index, 0));
  };
  const bind::Target<Book> book(params);
  const double value = ParameterAsDouble(params, 1, 0.0);
  int year = 0;
  int month = seed(3);
  int day = seed(4);
  int hour = seed(5);
  int min = seed(6);
  Fields fields;
  fields.add(book.get().dateUnpack(value, &year, &month, &day, &hour, &min, nullptr, nullptr));
  for (const int field : {year, month, day, hour, min}) fields.add(field);
  return bind::store(book.handle(), fields, result);
}

constexpr bind::Row kRows[] = {
    row<date_pack, 0, 0, 0, 0>(1618, "XL_Book_DatePack"),
    row<date_unpack>(1619, "XL_Book_DateUnpack", 2, 6),
    row<&Book::colorPack>(1620, "XL_Book_ColorPack"),
    row<&Book::colorUnpack>(1621, "XL_Book_ColorUnpack"),
};

}  // namespace

std::span<const bind::Row> book_date_and_color_functions() { return kRows; }
