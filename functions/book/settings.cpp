// External functions that read and change the settings of a book.
#include <string>

#include "functions/families.h"

namespace {

using bind::row;
using libxl::Book;

// The name may come as a container's bytes, which have no zero at the end. A container without a
// stream to read has failed already and names nothing.
bool set_locale(Book& book, bind::Bytes name) {
  const std::string terminated(name.begin(), name.end());
  return book.setLocale(g_last_error == codes::kNone ? terminated.c_str() : nullptr);
}

constexpr bind::Row kRows[] = {
    row<&Book::rgbMode>(1630, "XL_Book_RgbMode"),
    row<&Book::setRgbMode, true>(1631, "XL_Book_SetRgbMode"),
    row<&Book::refR1C1>(1632, "XL_Book_RefR1C1"),
    row<&Book::setRefR1C1, true>(1633, "XL_Book_SetRefR1C1"),
    row<&Book::biffVersion>(1634, "XL_Book_BiffVersion"),
    row<&Book::isDate1904>(1635, "XL_Book_IsDate1904"),
    row<&Book::setDate1904, true>(1636, "XL_Book_SetDate1904"),
    row<&Book::isTemplate>(1637, "XL_Book_IsTemplate"),
    row<&Book::setTemplate, true>(1638, "XL_Book_SetTemplate"),
    row<set_locale>(1640, "XL_Book_SetLocale"),
};

}  // namespace

std::span<const bind::Row> book_setting_functions() { return kRows; }
