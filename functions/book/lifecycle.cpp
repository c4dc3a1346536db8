// External functions that create, load, save and release a book.
#include <memory>
#include <string>
#include <string_view>

#include "functions/families.h"
#include "runtime/containers.h"

namespace {

using bind::row;
using libxl::Book;

// A book has no parent, so that its record is the root of all that it hands out.
short create_book(Book* book, fmx::Data& result) {
  if (!book) return codes::kLibrary;
  const auto release = [](Book* lost) { lost->release(); };
  std::unique_ptr<Book, decltype(release)> unregistered(book);
  const long handle = set_object(0, bind::type_name<Book>, book);
  (void)unregistered.release();
  return set_result(handle, static_cast<double>(handle), result);
}

short create_xls(const fmx::DataVect&, fmx::Data& result) {
  return create_book(xlCreateBookW(), result);
}

short create_xlsx(const fmx::DataVect&, fmx::Data& result) {
  return create_book(xlCreateXMLBookW(), result);
}

// Without a temporary file, which the other loads take as a text that may be empty.
bool load(Book& book, const wchar_t* path) { return book.load(path, nullptr); }

bool save(Book& book, const wchar_t* path) { return book.save(path, false); }

bool load_raw(Book& book, bind::Bytes bytes) {
  return book.loadRaw(bytes.data(), static_cast<unsigned>(bytes.size()), -1, -1, -1);
}

// The name is read only when there are bytes to put under it. Its default ends in .xls for either
// kind of book.
short save_raw(const fmx::DataVect& params, fmx::Data& result) {
  const bind::Target<Book> book(params);
  const char* data = nullptr;
  unsigned size = 0;
  book.get().saveRaw(&data, &size);
  if (set_last_error_message(book.handle())) return codes::kLibrary;
  SetResult(ParameterAsUTF8String(params, 1, "Unknown.xls"), std::string_view(data, size), "FILE",
            0, 0, result);
  return codes::kNone;
}

// A failure that the message tells of is the result here, not the outcome of the call.
short error_message(const fmx::DataVect& params, fmx::Data& result) {
  const bind::Target<Book> book(params);
  const char* message = book.get().errorMessage();
  if (message) SetResult(std::string(message), result);
  return codes::kNone;
}

// The book goes first; nothing is asked of it afterwards.
short release(const fmx::DataVect& params, fmx::Data&) {
  const bind::Target<Book> book(params);
  book.get().release();
  release_objects(book.handle());
  return codes::kNone;
}

constexpr bind::Row kRows[] = {
    row<create_xls>(1200, "XL_XlCreateBook", 0, 0),
    row<create_xlsx>(1400, "XL_XlCreateXMLBook", 0, 0),
    row<load>(1600, "XL_Book_Load"),
    row<save>(1601, "XL_Book_Save"),
    row<load_raw>(1602, "XL_Book_LoadRaw"),
    row<save_raw>(1603, "XL_Book_SaveRaw", 2, 2),
    row<error_message>(1641, "XL_Book_ErrorMessage", 1, 1),
    row<release>(1642, "XL_Book_Release", 1, 1),
    row<&Book::loadSheet, nullptr>(2216, "XL_Book_LoadSheet"),
    row<&Book::loadPartially, nullptr>(2217, "XL_Book_LoadPartially"),
    row<&Book::loadInfo>(2218, "XL_Book_LoadInfo"),
};

}  // namespace

std::span<const bind::Row> book_lifecycle_functions() { return kRows; }
