// External functions that make and list the formats, fonts and number formats of a book.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Book;

constexpr bind::Row kRows[] = {
    row<&Book::addFormat, nullptr>(1610, "XL_Book_AddFormat"),
    row<&Book::addFont, nullptr>(1611, "XL_Book_AddFont"),
    row<&Book::addCustomNumFormat>(1612, "XL_Book_AddCustomNumFormat"),
    row<&Book::customNumFormat>(1613, "XL_Book_CustomNumFormat"),
    row<&Book::format>(1614, "XL_Book_Format"),
    row<&Book::formatSize>(1615, "XL_Book_FormatSize"),
    row<&Book::font>(1616, "XL_Book_Font"),
    row<&Book::fontSize>(1617, "XL_Book_FontSize"),
    row<&Book::defaultFont>(1628, "XL_Book_DefaultFont"),
    row<&Book::setDefaultFont>(1629, "XL_Book_SetDefaultFont"),
};

}  // namespace

std::span<const bind::Row> book_format_functions() { return kRows; }
