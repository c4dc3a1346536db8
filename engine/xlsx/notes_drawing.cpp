#include "engine/xlsx/notes_drawing.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "engine/text/number_text.h"
#include "engine/workbook/metrics.h"
#include "engine/xlsx/comments.h"

namespace engine::xlsx {

namespace {

constexpr int kShapesPerCluster = 1024;
constexpr std::string_view kIdPrefix = "_x0000_s";

// Where a box stands beside its cell: one column to the right, one row up, a little inside.
constexpr int kInsetX = 15;
constexpr int kInsetY = 10;
constexpr int kInsetYInFirstRow = 2;

constexpr int kDefaultWidth = 129;
constexpr int kDefaultHeight = 75;
constexpr int kLargestBox = 32767;

std::optional<int> number_at(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\n' || text.front() == '\r'))
    text.remove_prefix(1);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// The content of the first element of that name: `<x:Row>3</x:Row>` holds 3.
std::optional<int> element_number(std::string_view shape, std::string_view name) {
  std::string open = "<";
  open.append(name).append(">");
  const std::size_t at = shape.find(open);
  return at == std::string_view::npos ? std::nullopt : number_at(shape.substr(at + open.size()));
}

// The values of `<o:idmap v:ext="edit" data="1,2"/>`.
std::vector<int> clusters_of(std::string_view drawing) {
  std::vector<int> clusters;
  const std::size_t map = drawing.find(":idmap");
  if (map == std::string_view::npos) return clusters;
  std::string_view element = drawing.substr(map, drawing.find('>', map) - map);
  const std::size_t data = element.find("data=");
  if (data == std::string_view::npos || data + 6 > element.size()) return clusters;
  element.remove_prefix(data + 6);
  while (const auto number = number_at(element)) {
    clusters.push_back(*number);
    const std::size_t comma = element.find(',');
    if (comma == std::string_view::npos) break;
    element.remove_prefix(comma + 1);
  }
  return clusters;
}

// One `<v:shape …>…</v:shape>` of a drawing, and the cell of the note it shows if it is a note's.
struct Shape {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::optional<CellAddress> note;
};

std::vector<Shape> shapes_of(std::string_view drawing) {
  constexpr std::string_view kOpen = "<v:shape";
  constexpr std::string_view kClose = "</v:shape>";
  std::vector<Shape> shapes;
  std::size_t at = 0;
  while ((at = drawing.find(kOpen, at)) != std::string_view::npos) {
    const std::size_t after = at + kOpen.size();
    const std::size_t close = drawing.find(kClose, after);
    if (close == std::string_view::npos) break;
    if (drawing[after] == 't') {  // a shape type, which shapes refer to
      at = after;
      continue;
    }
    Shape shape{at, close + kClose.size(), std::nullopt};
    const std::string_view text = drawing.substr(at, shape.end - at);
    const auto row = element_number(text, "x:Row");
    const auto column = element_number(text, "x:Column");
    if (text.find("ObjectType=\"Note\"") != std::string_view::npos && row && column)
      shape.note = CellAddress{*row, *column};
    shapes.push_back(shape);
    at = shape.end;
  }
  return shapes;
}

// A length of a shape's style in pixels; 0 when it is not there or in a unit that nobody uses here.
int style_pixels(std::string_view shape, std::string_view name) {
  const std::string_view tag = shape.substr(0, shape.find('>'));
  for (std::size_t at = 0; (at = tag.find(name, at)) != std::string_view::npos; ++at) {
    const bool is_whole =
        at > 0 && std::string_view("\"'; \r\n").find(tag[at - 1]) != std::string_view::npos;
    if (!is_whole || tag.substr(at + name.size(), 1) != ":") continue;
    const std::string_view value = tag.substr(at + name.size() + 1);
    const std::string_view number = value.substr(0, value.find_first_not_of("0123456789."));
    const std::string_view unit = value.substr(number.size(), 2);
    const double length = parse_number(number).value_or(0);
    const double pixels = unit == "pt" ? length * 4 / 3 : unit == "px" ? length : 0;
    return static_cast<int>(std::lround(std::min(pixels, double{kLargestBox})));
  }
  return 0;
}

// Hands out shape ids in the clusters of one drawing.
class ShapeIds {
 public:
  ShapeIds(std::string_view drawing, ShapeClusters& clusters)
      : book_(clusters), clusters_(clusters_of(drawing)) {
    std::size_t at = 0;
    while ((at = drawing.find(kIdPrefix, at)) != std::string_view::npos) {
      at += kIdPrefix.size();
      if (const auto id = number_at(drawing.substr(at))) last_ = std::max(last_, *id);
    }
  }

  int next() {
    const bool used_up = last_ % kShapesPerCluster == kShapesPerCluster - 1;
    if (clusters_.empty() || used_up || last_ < clusters_.back() * kShapesPerCluster) {
      // Shapes of clusters that are not the last are left alone: a fresh cluster has no gaps.
      if (clusters_.empty() || used_up) clusters_.push_back(book_.take());
      last_ = clusters_.back() * kShapesPerCluster;
    }
    return ++last_;
  }

  std::string map() const {
    std::string text;
    for (const int cluster : clusters_) {
      if (!text.empty()) text.push_back(',');
      text.append(std::to_string(cluster));
    }
    return text;
  }

 private:
  ShapeClusters& book_;
  std::vector<int> clusters_;
  int last_ = 0;
};

std::string points(int pixels) {
  // Three quarters of a point a pixel: at most two decimals.
  const int hundredths = pixels * 75;
  std::string text = std::to_string(hundredths / 100);
  if (hundredths % 100 != 0)
    text.append(hundredths % 100 == 50 ? ".5" : hundredths % 100 == 25 ? ".25" : ".75");
  return text.append("pt");
}

std::string anchor(Corner left, Corner top, Corner right, Corner bottom) {
  std::string text;
  for (const Corner& corner : {left, top, right, bottom}) {
    if (!text.empty()) text.append(", ");
    text.append(std::to_string(corner.index)).append(", ").append(std::to_string(corner.offset));
  }
  return text;
}

std::string box(const SheetContents& sheet, const Grid& grid, CellAddress cell, const Comment& note,
                int id, int z_index) {
  const int width = note.width > 0 ? note.width : kDefaultWidth;
  const int height = note.height > 0 ? note.height : kDefaultHeight;
  const Corner left{std::min(cell.column + 1, grid.columns - 1), kInsetX};
  const Corner top{std::max(cell.row - 1, 0), cell.row == 0 ? kInsetYInFirstRow : kInsetY};
  const Corner right = walk_columns(sheet, left, width, grid.columns);
  const Corner bottom = walk_rows(sheet, top, height, grid.rows);
  int x = left.offset;
  for (int column = 0; column < left.index; ++column) x += column_pixels(sheet, column);
  const int y = top.index * sheet.default_row_pixels + top.offset;

  std::string text = R"(<v:shape id=")";
  text.append(kIdPrefix).append(std::to_string(id));
  text.append(R"(" type="#_x0000_t202" style="position:absolute;margin-left:)").append(points(x));
  text.append(";margin-top:").append(points(y)).append(";width:").append(points(width));
  text.append(";height:").append(points(height)).append(";z-index:");
  text.append(std::to_string(z_index)).append(R"(;visibility:hidden" fillcolor="#ffffe1")");
  text.append(R"( o:insetmode="auto"><v:fill color2="#ffffe1"/>)");
  text.append(R"(<v:shadow on="t" color="black" obscured="t"/><v:path o:connecttype="none"/>)");
  text.append(R"(<v:textbox style="mso-direction-alt:auto"><div style="text-align:left"></div>)");
  text.append(
      R"(</v:textbox><x:ClientData ObjectType="Note"><x:MoveWithCells/><x:SizeWithCells/>)");
  text.append("<x:Anchor>").append(anchor(left, top, right, bottom)).append("</x:Anchor>");
  text.append("<x:AutoFill>False</x:AutoFill><x:Row>").append(std::to_string(cell.row));
  text.append("</x:Row><x:Column>").append(std::to_string(cell.column));
  return text.append("</x:Column></x:ClientData></v:shape>");
}

constexpr std::string_view kEmptyDrawing =
    "<xml xmlns:v=\"urn:schemas-microsoft-com:vml\" "
    "xmlns:o=\"urn:schemas-microsoft-com:office:office\""
    " xmlns:x=\"urn:schemas-microsoft-com:office:excel\"><o:shapelayout v:ext=\"edit\">"
    "<o:idmap v:ext=\"edit\" data=\"\"/></o:shapelayout></xml>";

constexpr std::string_view kBoxType =
    "<v:shapetype id=\"_x0000_t202\" coordsize=\"21600,21600\" o:spt=\"202\""
    " path=\"m,l,21600r21600,l21600,xe\"><v:stroke joinstyle=\"miter\"/>"
    "<v:path gradientshapeok=\"t\" o:connecttype=\"rect\"/></v:shapetype>";

void set_map(std::string& drawing, const std::string& clusters) {
  const std::size_t map = drawing.find(":idmap");
  if (map == std::string::npos) return;
  const std::size_t data = drawing.find("data=", map);
  if (data == std::string::npos || data > drawing.find('>', map)) return;
  const std::size_t begin = data + 6;
  const std::size_t end = drawing.find(drawing[data + 5], begin);
  if (end != std::string::npos) drawing.replace(begin, end - begin, clusters);
}

}  // namespace

void ShapeClusters::enter(std::string_view drawing) {
  for (const int cluster : clusters_of(drawing)) used_.insert(cluster);
}

int ShapeClusters::take() {
  int free = 1;
  for (const int used : used_) {
    if (used > free) break;
    if (used == free) ++free;
  }
  used_.insert(free);
  return free;
}

void read_note_sizes(std::string_view drawing, Comments& comments) {
  for (const Shape& shape : shapes_of(drawing)) {
    const auto note = shape.note ? comments.find(*shape.note) : comments.end();
    if (note == comments.end()) continue;
    const std::string_view text = drawing.substr(shape.begin, shape.end - shape.begin);
    note->second.width = style_pixels(text, "width");
    note->second.height = style_pixels(text, "height");
  }
}

std::string write_notes_drawing(std::string_view stored, const SheetContents& sheet,
                                const Comments& as_read, const Grid& grid,
                                ShapeClusters& clusters) {
  const std::string_view source = stored.empty() ? kEmptyDrawing : stored;
  std::string drawing;
  std::set<CellAddress> shown;
  std::size_t copied = 0;
  for (const Shape& shape : shapes_of(source)) {
    drawing.append(source.substr(copied, shape.begin - copied));
    copied = shape.end;
    if (shape.note) {
      if (!is_as_read(sheet.comments, as_read, *shape.note)) continue;
      shown.insert(*shape.note);
    }
    drawing.append(source.substr(shape.begin, shape.end - shape.begin));
  }
  drawing.append(source.substr(copied));

  ShapeIds ids(source, clusters);
  std::string boxes;
  if (drawing.find("\"_x0000_t202\"") == std::string::npos) boxes.append(kBoxType);
  int z_index = static_cast<int>(shown.size());
  for (const auto& [cell, note] : sheet.comments)
    if (!shown.contains(cell)) boxes.append(box(sheet, grid, cell, note, ids.next(), ++z_index));
  const std::size_t end = drawing.rfind("</xml>");
  drawing.insert(end == std::string::npos ? drawing.size() : end, boxes);
  set_map(drawing, ids.map());
  return drawing;
}

}  // namespace engine::xlsx
