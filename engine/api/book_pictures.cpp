// Operations of a book on its pictures.
#include <cstdint>
#include <utility>

#include "engine/api/book_object.h"
#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/package/file_error.h"
#include "engine/package/source.h"
#include "engine/text/wide.h"

namespace engine::api {

namespace {

libxl::PictureType type_of(PictureKind kind) {
  constexpr libxl::PictureType kTypes[] = {
      libxl::PicturePng, libxl::PictureJpeg, libxl::PictureGif,  libxl::PictureWmf,
      libxl::PictureDib, libxl::PictureEmf,  libxl::PicturePict, libxl::PictureTiff};
  return kTypes[static_cast<std::size_t>(kind)];
}

// Throws FileError.
std::string read_file(const std::string& path) {
  const auto source = package::Source::look_into(path);
  if (source->size() > UINT32_MAX)
    throw package::FileError("cannot be read: it is larger than 4294967295 bytes");
  std::string bytes(static_cast<std::size_t>(source->size()), '\0');
  source->read(0, bytes);
  return bytes;
}

}  // namespace

int BookObject::pictureSize() const {
  return run(0, [&] { return static_cast<int>(book_.pictures().size()); });
}

libxl::PictureType BookObject::getPicture(int index, const char** data, unsigned* size) const {
  return run(libxl::PictureError, [&] {
    const Picture* picture = book_.find_picture(index);
    if (!picture) return libxl::PictureError;
    const auto refuse = [&](std::string text) {
      return book_.refuse(libxl::PictureError, std::move(text));
    };
    if (!picture->bytes) return refuse(messages::picture_without_data(index));
    if (picture->bytes->empty()) return refuse(messages::picture_empty(index));
    if (!picture->header) return refuse(messages::not_picture());
    give(data, picture->bytes->data());
    give(size, static_cast<unsigned>(picture->bytes->size()));
    return type_of(picture->header->kind);
  });
}

bool BookObject::check_kind(PictureKind kind) const {
  return kind != PictureKind::kGif || book_.workbook().limits.gif_pictures ||
         book_.refuse(false, messages::picture_not_possible(name_of(kind), book_.codec().name));
}

bool BookObject::take_picture(const wchar_t* path, std::string* file, Picture* picture) const {
  *file = to_utf8(path);
  if (file->empty()) return book_.refuse(false, messages::empty("file name"));
  try {
    picture->bytes = std::make_shared<const std::string>(read_file(*file));
  } catch (const package::FileError& error) {
    return book_.refuse(false, messages::file(*file) + error.what());
  }
  picture->header = read_picture_header(*picture->bytes);
  if (!picture->header) return book_.refuse(false, messages::not_picture_file(*file));
  return check_kind(picture->header->kind);
}

int BookObject::add(Picture picture) {
  std::vector<Picture>& pictures = book_.pictures();
  pictures.push_back(std::move(picture));
  return static_cast<int>(pictures.size()) - 1;
}

int BookObject::addPicture(const wchar_t* path) {
  return run(-1, [&] {
    std::string file;
    Picture picture;
    return take_picture(path, &file, &picture) ? add(std::move(picture)) : -1;
  });
}

int BookObject::addPicture2(const char* data, unsigned size) {
  return run(-1, [&] {
    if (!data || size == 0) return book_.refuse(-1, messages::empty("picture data"));
    Picture picture;
    picture.header = read_picture_header({data, size});
    if (!picture.header) return book_.refuse(-1, messages::not_picture());
    if (!check_kind(picture.header->kind)) return -1;
    picture.bytes = std::make_shared<const std::string>(data, size);
    return add(std::move(picture));
  });
}

int BookObject::addPictureAsLink(const wchar_t* path, bool insert) {
  return run(-1, [&] {
    Picture picture;
    if (!take_picture(path, &picture.link, &picture)) return -1;
    if (!insert) picture.bytes.reset();
    return add(std::move(picture));
  });
}

}  // namespace engine::api
