// Operations of a sheet on the pictures that lie on it.
#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"

namespace engine::api {

namespace {

constexpr int kOwnSize = -1;

// A size in pixels as an object has it.
int settled_size(double pixels) { return std::max(static_cast<int>(std::lround(pixels)), 1); }

}  // namespace

int SheetObject::pictureSize() const {
  return run(0, [&] { return static_cast<int>(contents().pictures.size()); });
}

int SheetObject::getPicture(int index, int* rowTop, int* colLeft, int* rowBottom, int* colRight,
                            int* width, int* height, int* offsetX, int* offsetY,
                            const wchar_t** linkPath) const {
  return run(-1, [&] {
    const PlacedPictures& pictures = contents().pictures;
    if (!book_.check_index("picture", index, pictures.size())) return -1;
    const PlacedPicture& placed = pictures[static_cast<std::size_t>(index)];
    const PictureBox box = box_of(contents(), placed.anchor, limits().grid);
    const std::string& link = book_.pictures()[placed.picture].link;
    if (linkPath) *linkPath = link.empty() ? nullptr : book_.give(link);
    give(rowTop, box.row_top);
    give(colLeft, box.column_left);
    give(rowBottom, box.row_bottom);
    give(colRight, box.column_right);
    give(width, box.width);
    give(height, box.height);
    give(offsetX, box.offset_x);
    give(offsetY, box.offset_y);
    return static_cast<int>(placed.picture);
  });
}

bool SheetObject::check_place(int row, int column, int picture) const {
  return check_cell(row, column) && book_.check_index("picture", picture, book_.pictures().size());
}

bool SheetObject::check_offsets(int x, int y, libxl::Position pos) const {
  if (x < 0) return book_.refuse(false, messages::too_small("offset x", x, 0));
  if (y < 0) return book_.refuse(false, messages::too_small("offset y", y, 0));
  return (pos >= libxl::PositionMoveAndSize && pos <= libxl::PositionFree) ||
         book_.refuse(false, messages::unknown("position", pos));
}

std::optional<PictureHeader> SheetObject::own_size(int picture) const {
  const Picture& its = *book_.find_picture(picture);
  if (its.header) return its.header;
  book_.refuse(!its.bytes           ? messages::picture_without_data(picture)
               : its.bytes->empty() ? messages::picture_empty(picture)
                                    : messages::not_picture());
  return std::nullopt;
}

void SheetObject::place(int picture, PictureBox box, double width, double height,
                        libxl::Position pos) {
  constexpr Anchoring kAnchoring[] = {Anchoring::kMovesAndSizes, Anchoring::kMoves,
                                      Anchoring::kStays};
  constexpr double kMost = std::numeric_limits<int>::max();
  if (width > kMost)
    return book_.refuse(messages::out_of_range("picture width", width, 1.0, kMost));
  if (height > kMost)
    return book_.refuse(messages::out_of_range("picture height", height, 1.0, kMost));
  if (!sheet_->drawing_damage.empty())
    return book_.refuse(book_.contents().source + sheet_->drawing_damage);
  box.width = settled_size(width);
  box.height = settled_size(height);
  sheet_->change([&](SheetContents& sheet) {
    sheet.pictures.push_back({static_cast<std::uint32_t>(picture),
                              make_anchor(sheet, kAnchoring[pos], box, limits().grid), 0});
  });
}

void SheetObject::setPicture(int row, int column, int pictureId, double scale, int offsetX,
                             int offsetY, libxl::Position pos) {
  run([&] {
    if (!check_place(row, column, pictureId)) return;
    if (!std::isfinite(scale)) return book_.refuse(messages::not_finite("scale"));
    if (scale <= 0) return book_.refuse(messages::not_positive("scale", scale));
    if (!check_offsets(offsetX, offsetY, pos) || !check_loaded(row)) return;
    const auto own = own_size(pictureId);
    if (!own) return;
    const PictureBox at{
        .row_top = row, .column_left = column, .offset_x = offsetX, .offset_y = offsetY};
    place(pictureId, at, own->width * scale, own->height * scale, pos);
  });
}

void SheetObject::setPicture2(int row, int column, int pictureId, int width, int height,
                              int offsetX, int offsetY, libxl::Position pos) {
  run([&] {
    if (!check_place(row, column, pictureId)) return;
    if (width != kOwnSize && width < 1)
      return book_.refuse(messages::too_small("picture width", width, 1));
    if (height != kOwnSize && height < 1)
      return book_.refuse(messages::too_small("picture height", height, 1));
    if (!check_offsets(offsetX, offsetY, pos) || !check_loaded(row)) return;
    double wide = width;
    double high = height;
    if (width == kOwnSize || height == kOwnSize) {
      const auto own = own_size(pictureId);
      if (!own) return;
      const double ratio = static_cast<double>(own->width) / own->height;
      if (width == kOwnSize) wide = height == kOwnSize ? own->width : height * ratio;
      if (height == kOwnSize) high = width == kOwnSize ? own->height : width / ratio;
    }
    const PictureBox at{
        .row_top = row, .column_left = column, .offset_x = offsetX, .offset_y = offsetY};
    place(pictureId, at, wide, high, pos);
  });
}

}  // namespace engine::api
