// External functions on the pictures of a book.
#include <string>
#include <string_view>

#include "functions/families.h"
#include "runtime/containers.h"

namespace {

using bind::row;
using libxl::Book;

// How the host gets a kind of picture: what its file's name ends in, and the stream that holds it.
struct PictureStream {
  const char* ending = "";
  const char* type = "FILE";
};

PictureStream stream_of(libxl::PictureType type) {
  switch (type) {
    case libxl::PicturePng:
      return {".png", "PNGf"};
    case libxl::PictureJpeg:
      return {".jpg", "JPEG"};
    case libxl::PictureWmf:
      return {".wmf"};
    case libxl::PictureDib:
      return {".dib"};
    case libxl::PictureEmf:
      return {".emf"};
    case libxl::PictureTiff:
      return {".tif"};
    case libxl::PictureError:  // of unknown kind, which the container does not take
      return {"", ""};
    default:
      return {};
  }
}

// The file is named after the position, which is read a second time, as a text; a further parameter
// is accepted and not looked at. The size in pixels is not told.
short get_picture(const fmx::DataVect& params, fmx::Data& result) {
  constexpr short kUnknownSize = -1;
  const bind::Target<Book> book(params);
  const int index = bind::read<int>(params, 1, 0);
  const char* data = nullptr;
  unsigned size = 0;
  const libxl::PictureType type = book.get().getPicture(index, &data, &size);
  if (set_last_error_message(book.handle())) return codes::kLibrary;
  const PictureStream stream = stream_of(type);
  const std::string name = ParameterAsUTF8String(params, 1, "Unknown") + stream.ending;
  SetResult(name, std::string_view(data, size), stream.type, kUnknownSize, kUnknownSize, result);
  return codes::kNone;
}

// A container without a stream to read gives no bytes and has failed already.
int add_picture(Book& book, bind::Bytes bytes) {
  return book.addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
}

constexpr bind::Row kRows[] = {
    row<&Book::pictureSize>(1624, "XL_Book_PictureSize"),
    row<get_picture>(1625, "XL_Book_GetPicture", 2, 3),
    row<&Book::addPicture>(1626, "XL_Book_AddPicture"),
    row<add_picture>(1627, "XL_Book_AddPicture2"),
    row<&Book::addPictureAsLink, false>(2221, "XL_Book_AddPictureAsLink"),
};

}  // namespace

std::span<const bind::Row> book_picture_functions() { return kRows; }
