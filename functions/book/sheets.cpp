// External functions that add, find, move and remove the sheets of a book.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Book;

constexpr bind::Row kRows[] = {
    row<&Book::addSheet, nullptr>(1604, "XL_Book_AddSheet"),
    row<&Book::insertSheet, nullptr>(1605, "XL_Book_InsertSheet"),
    row<&Book::getSheet>(1606, "XL_Book_GetSheet"),
    row<&Book::sheetType>(1607, "XL_Book_SheetType"),
    row<&Book::delSheet>(1608, "XL_Book_DelSheet"),
    row<&Book::sheetCount>(1609, "XL_Book_SheetCount"),
    row<&Book::activeSheet>(1622, "XL_Book_ActiveSheet"),
    row<&Book::setActiveSheet>(1623, "XL_Book_SetActiveSheet"),
    row<&Book::getSheetName>(2219, "XL_Book_GetSheetName"),
    row<&Book::moveSheet>(2220, "XL_Book_MoveSheet"),
};

}  // namespace

std::span<const bind::Row> book_sheet_functions() { return kRows; }
