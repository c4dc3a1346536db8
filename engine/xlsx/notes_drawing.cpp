#include "engine/xlsx/notes_drawing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "engine/package/xml_text.h"
#include "engine/text/number_text.h"
#include "engine/workbook/metrics.h"
#include "engine/xlsx/comments.h"
#include "engine/xlsx/vml_tags.h"

namespace engine::xlsx {

namespace {

constexpr int kShapesPerCluster = 1024;
constexpr int kLastCluster = 0x7FFFFFFF / kShapesPerCluster;
constexpr std::string_view kIdPrefix = "_x0000_s";
constexpr std::string_view kBoxTypeId = "_x0000_t202";
constexpr std::string_view kBlanks = " \t\r\n";

// Where a box stands beside its cell: one column to the right, one row up, a little inside.
constexpr int kInsetX = 15;
constexpr int kInsetY = 10;
constexpr int kInsetYInFirstRow = 2;

constexpr int kDefaultWidth = 129;
constexpr int kDefaultHeight = 75;
constexpr int kLargestBox = 32767;

std::optional<int> number_at(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// The values of `<o:idmap v:ext="edit" data="1,2"/>`: those that shapes can have an id in.
std::vector<int> clusters_of(std::string_view data) {
  std::vector<int> clusters;
  while (const auto number = number_at(data)) {
    if (*number >= 0 && *number <= kLastCluster) clusters.push_back(*number);
    const std::size_t comma = data.find(',');
    if (comma == std::string_view::npos) break;
    data.remove_prefix(comma + 1);
  }
  return clusters;
}

// Calls back with each number of a shape that the drawing mentions.
template <class Use>
void for_each_id(std::string_view drawing, Use use) {
  std::size_t at = 0;
  while ((at = drawing.find(kIdPrefix, at)) != std::string_view::npos) {
    at += kIdPrefix.size();
    if (const auto id = number_at(drawing.substr(at)); id && *id >= 0) use(*id);
  }
}

// One shape of a drawing, and the cell of the note it shows if it is a note's.
struct Shape {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string_view style;
  std::optional<CellAddress> note;
  std::string_view row;  // contents of elements, where they stand in the text
  std::string_view column;
  std::string_view anchor;
};

// What the root says; boxes stand in it.
struct Root {
  VmlTag tag;
  std::optional<std::size_t> end;  // where its end tag begins
  std::set<std::string_view> prefixes;
  std::array<std::string_view, std::size(kVmlNamespaces)> known;  // prefixes of the families
};

struct Drawing {
  std::string_view text;
  std::optional<Root> root;
  std::vector<Shape> shapes;
  std::optional<std::string_view> map;  // the value of the idmap's data
  bool has_box_type = false;
};

Root read_root(const VmlTag& tag) {
  Root root{tag, std::nullopt, {}, {}};
  package::XmlAttributes attributes = tag.attributes;
  for (package::XmlAttribute one; attributes.next(one);) {
    if (!one.name.starts_with("xmlns:")) continue;
    const std::string_view prefix = package::local_name(one.name);
    root.prefixes.insert(prefix);
    for (std::size_t i = 0; i < root.known.size(); ++i)
      if (one.value == kVmlNamespaces[i].uri && root.known[i] != kVmlNamespaces[i].prefix)
        root.known[i] = prefix;
  }
  return root;
}

// What a shape says of a note while its tags go by.
struct ShapeReader {
  std::string_view text;
  std::optional<Shape> open;
  bool is_note = false;
  std::optional<int> row;
  std::optional<int> column;

  void read(const VmlTag& tag, std::vector<Shape>& shapes) {
    if (tag.is(VmlFamily::kVml, "shape")) {
      // A shape that another begins in has lost its end.
      if (tag.opens())
        *this = {
            text, Shape{tag.begin, 0, tag.attributes.find("style"), {}, {}, {}, {}}, false, {}, {}};
      if (!open || tag.kind == VmlTag::Kind::kStart) return;
      open->end = tag.end;
      if (is_note && row && column) open->note = CellAddress{*row, *column};
      shapes.push_back(*open);
      open.reset();
    } else if (open && tag.opens() && tag.family == VmlFamily::kExcel) {
      const std::string_view local = package::local_name(tag.name);
      const auto content = [&] { return number_at(text.substr(tag.end)); };
      const auto inside = [&] {
        return text.substr(tag.end, std::min(text.find('<', tag.end), text.size()) - tag.end);
      };
      if (local == "ClientData") is_note |= tag.attributes.find("ObjectType") == "Note";
      if (local == "Row" && !row) {
        row = content();
        open->row = inside();
      } else if (local == "Column" && !column) {
        column = content();
        open->column = inside();
      } else if (local == "Anchor" && open->anchor.empty()) {
        open->anchor = inside();
      }
    }
  }
};

Drawing read_drawing(std::string_view text) {
  Drawing drawing;
  drawing.text = text;
  ShapeReader shape{text, {}, false, {}, {}};
  VmlTags tags(text);
  for (VmlTag tag; tags.next(tag);) {
    if (!drawing.root) {
      if (tag.opens()) drawing.root = read_root(tag);
      continue;
    }
    if (!tag.opens() && tag.name == drawing.root->tag.name) drawing.root->end = tag.begin;
    shape.read(tag, drawing.shapes);
    if (!tag.opens()) continue;
    if (tag.is(VmlFamily::kVml, "shapetype"))
      drawing.has_box_type |= tag.attributes.find("id") == kBoxTypeId;
    else if (tag.is(VmlFamily::kOffice, "idmap") && !drawing.map)
      if (const auto data = tag.attributes.find("data"); data.data()) drawing.map = data;
  }
  return drawing;
}

// A length of a shape's style in pixels; 0 when it is not there or in a unit that nobody uses here.
int style_pixels(std::string_view style, std::string_view name) {
  while (!style.empty()) {
    std::string_view one = style.substr(0, style.find(';'));
    style.remove_prefix(std::min(one.size() + 1, style.size()));
    one.remove_prefix(std::min(one.find_first_not_of(kBlanks), one.size()));
    if (!one.starts_with(name) || one.substr(name.size(), 1) != ":") continue;
    const std::string_view value = one.substr(name.size() + 1);
    const std::string_view number = value.substr(0, value.find_first_not_of("0123456789."));
    const std::string_view unit = value.substr(number.size(), 2);
    const double length = parse_number(number).value_or(0);
    const double pixels = unit == "pt" ? length * 4 / 3 : unit == "px" ? length : 0;
    return static_cast<int>(std::lround(std::min(pixels, double{kLargestBox})));
  }
  return 0;
}

// Hands out shape ids in the clusters of one drawing. Only the last cluster is filled up: a fresh
// one has no gaps.
class ShapeIds {
 public:
  ShapeIds(const Drawing& drawing, ShapeClusters& clusters)
      : book_(clusters), clusters_(clusters_of(drawing.map.value_or(""))) {
    if (clusters_.empty()) return;
    const long long first = first_of(clusters_.back());
    last_ = first;
    for_each_id(drawing.text, [&](long long id) {
      if (id < first + kShapesPerCluster) last_ = std::max(last_, id);
    });
  }

  long long next() {
    if (clusters_.empty() || last_ % kShapesPerCluster == kShapesPerCluster - 1) {
      clusters_.push_back(book_.take());
      last_ = first_of(clusters_.back());
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
  static long long first_of(int cluster) {
    return static_cast<long long>(cluster) * kShapesPerCluster;
  }

  ShapeClusters& book_;
  std::vector<int> clusters_;
  long long last_ = 0;
};

std::string points(long long pixels) {
  // Three quarters of a point a pixel: at most two decimals.
  const long long hundredths = pixels * 75;
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

// Makes boxes, in the usual prefixes.
class Boxes {
 public:
  Boxes(const SheetContents& sheet, const Grid& grid)
      : grid_(grid),
        columns_(Edges::of_columns(sheet, grid.columns)),
        rows_(Edges::of_rows(sheet, grid.rows)),
        usual_height_(pixels_of_points(sheet.default_row_height)) {}

  std::string make(CellAddress cell, const Comment& note, long long id, int z_index) const {
    const int width = note.width > 0 ? note.width : kDefaultWidth;
    const int height = note.height > 0 ? note.height : kDefaultHeight;
    const Corner left{std::min(cell.column + 1, grid_.columns - 1), kInsetX};
    const Corner top{std::max(cell.row - 1, 0), cell.row == 0 ? kInsetYInFirstRow : kInsetY};
    const Corner right = columns_.walk(left, width);
    const Corner bottom = rows_.walk(top, height);
    const long long x = columns_.position(left.index) + left.offset;
    const long long y = static_cast<long long>(top.index) * usual_height_ + top.offset;

    std::string text = R"(<v:shape id=")";
    text.append(kIdPrefix).append(std::to_string(id));
    text.append(R"(" type="#_x0000_t202" style="position:absolute;margin-left:)");
    text.append(points(x)).append(";margin-top:").append(points(y));
    text.append(";width:").append(points(width)).append(";height:").append(points(height));
    text.append(";z-index:").append(std::to_string(z_index));
    text.append(R"(;visibility:hidden" fillcolor="#ffffe1" o:insetmode="auto">)");
    text.append(R"(<v:fill color2="#ffffe1"/><v:shadow on="t" color="black" obscured="t"/>)");
    text.append(R"(<v:path o:connecttype="none"/><v:textbox style="mso-direction-alt:auto">)");
    text.append(
        R"(<div style="text-align:left"></div></v:textbox><x:ClientData ObjectType="Note">)");
    text.append("<x:MoveWithCells/><x:SizeWithCells/><x:Anchor>");
    text.append(anchor(left, top, right, bottom))
        .append("</x:Anchor><x:AutoFill>False</x:AutoFill>");
    text.append("<x:Row>").append(std::to_string(cell.row)).append("</x:Row><x:Column>");
    text.append(std::to_string(cell.column));
    return text.append("</x:Column></x:ClientData></v:shape>");
  }

 private:
  const Grid& grid_;
  Edges columns_;
  Edges rows_;
  int usual_height_;
};

constexpr std::string_view kEmptyDrawing =
    "<xml xmlns:v=\"urn:schemas-microsoft-com:vml\" "
    "xmlns:o=\"urn:schemas-microsoft-com:office:office\""
    " xmlns:x=\"urn:schemas-microsoft-com:office:excel\"><o:shapelayout v:ext=\"edit\">"
    "<o:idmap v:ext=\"edit\" data=\"\"/></o:shapelayout></xml>";

constexpr std::string_view kBoxType =
    "<v:shapetype id=\"_x0000_t202\" coordsize=\"21600,21600\" o:spt=\"202\""
    " path=\"m,l,21600r21600,l21600,xe\"><v:stroke joinstyle=\"miter\"/>"
    "<v:path gradientshapeok=\"t\" o:connecttype=\"rect\"/></v:shapetype>";

// The prefixes of the families in the root, and what has to be declared there for them.
struct Prefixes {
  explicit Prefixes(const Root& root) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      names[i] = root.known[i];
      if (!names[i].empty()) continue;
      names[i] = kVmlNamespaces[i].prefix;
      for (int number = 1; root.prefixes.contains(names[i]); ++number)
        names[i] = std::string(kVmlNamespaces[i].prefix).append(std::to_string(number));
      declarations.append(" xmlns:").append(names[i]).append("=\"");
      declarations.append(kVmlNamespaces[i].uri).append("\"");
    }
  }

  // Appends markup of ours, which is in the usual prefixes.
  void append(std::string& out, std::string_view markup) const {
    while (!markup.empty()) {
      const std::size_t colon = markup.find(':');
      if (colon == std::string_view::npos) break;
      const std::size_t letter = colon - 1;
      const auto* const usual =
          std::ranges::find(kVmlNamespaces, markup.substr(letter, 1), &VmlNamespace::prefix);
      const bool prefixed =
          usual != std::end(kVmlNamespaces) &&
          std::string_view("</ ").find(markup[letter - 1]) != std::string_view::npos;
      out.append(markup.substr(0, prefixed ? letter : colon));
      if (prefixed) out.append(names[static_cast<std::size_t>(usual - kVmlNamespaces)]);
      out.push_back(':');
      markup.remove_prefix(colon + 1);
    }
    out.append(markup);
  }

  std::array<std::string, std::size(kVmlNamespaces)> names;
  std::string declarations;
};

// A stretch of the drawing with what stands there instead.
struct Edit {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string text;
};

std::string edited(std::string_view text, std::vector<Edit> edits) {
  std::ranges::stable_sort(edits, {}, &Edit::begin);
  std::string made;
  std::size_t copied = 0;
  for (const Edit& edit : edits) {
    if (edit.begin < copied) continue;  // inside of what went
    made.append(text.substr(copied, edit.begin - copied)).append(edit.text);
    copied = edit.end;
  }
  return made.append(text.substr(copied));
}

// The place in front of the root's end.
Edit at_end(const Drawing& drawing, std::string text) {
  const VmlTag& root = drawing.root->tag;
  if (root.kind == VmlTag::Kind::kEmpty)
    return {root.end - 2, root.end, ">" + text + "</" + std::string(root.name) + ">"};
  const std::size_t end = drawing.root->end.value_or(drawing.text.size());
  return {end, end, std::move(text)};
}

// As UTF-8. A declaration of another encoding goes with it.
std::string readable(std::string_view drawing) {
  std::string text(drawing);
  if (package::looks_like_utf16(text) && package::xml_to_utf8(text) && text.starts_with("<?xml"))
    text.erase(0, text.find("?>") + 2);
  return text;
}

}  // namespace

void ShapeClusters::enter(std::string_view drawing) {
  const std::string text = readable(drawing);
  for (const int cluster : clusters_of(read_drawing(text).map.value_or(""))) used_.insert(cluster);
  for_each_id(text, [this](int id) { used_.insert(id / kShapesPerCluster); });
}

int ShapeClusters::take() {
  while (used_.contains(free_)) ++free_;
  return free_++;
}

void read_note_sizes(std::string_view drawing, Comments& comments) {
  const std::string text = readable(drawing);
  for (const Shape& shape : read_drawing(text).shapes) {
    const auto note = shape.note ? comments.find(*shape.note) : comments.end();
    if (note == comments.end()) continue;
    note->second.width = style_pixels(shape.style, "width");
    note->second.height = style_pixels(shape.style, "height");
  }
}

std::string write_notes_drawing(std::string_view stored, const SheetContents& sheet,
                                const Comments& as_read, const Grid& grid,
                                ShapeClusters& clusters) {
  const std::string text = readable(stored);
  Drawing drawing = read_drawing(text);
  if (!drawing.root) drawing = read_drawing(kEmptyDrawing);
  std::vector<Edit> edits;
  std::set<CellAddress> shown;
  for (const Shape& shape : drawing.shapes) {
    if (!shape.note) continue;
    if (is_as_read(sheet.comments, as_read, *shape.note)) shown.insert(*shape.note);
    else edits.push_back({shape.begin, shape.end, ""});
  }

  ShapeIds ids(drawing, clusters);
  const Boxes boxes(sheet, grid);
  const Prefixes prefixes(*drawing.root);
  std::string added;
  int z_index = static_cast<int>(shown.size());
  for (const auto& [cell, note] : sheet.comments) {
    if (shown.contains(cell)) continue;
    if (added.empty() && !drawing.has_box_type) prefixes.append(added, kBoxType);
    prefixes.append(added, boxes.make(cell, note, ids.next(), ++z_index));
  }
  if (!added.empty()) {
    const VmlTag& root = drawing.root->tag;
    const std::size_t behind_name = root.begin + 1 + root.name.size();
    edits.push_back({behind_name, behind_name, prefixes.declarations});
    edits.push_back(at_end(drawing, std::move(added)));
  }
  if (drawing.map) {
    const auto begin = static_cast<std::size_t>(drawing.map->data() - drawing.text.data());
    edits.push_back({begin, begin + drawing.map->size(), ids.map()});
  }
  return edited(drawing.text, std::move(edits));
}

namespace {

// The numbers of an anchor: left column and offset in it, top row and offset, and so for right and
// bottom; empty for a text that is no anchor.
std::vector<int> numbers_of(std::string_view anchor) {
  std::vector<int> numbers;
  while (const auto number = number_at(anchor)) {
    numbers.push_back(*number);
    const std::size_t comma = anchor.find(',');
    if (comma == std::string_view::npos) break;
    anchor.remove_prefix(comma + 1);
  }
  if (numbers.size() != 8) numbers.clear();
  return numbers;
}

// Moves both corners as far as the cell goes that the shape keeps to.
std::string moved_anchor(std::vector<int> numbers, bool rows, int distance, int size) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i == (rows ? 2 : 0) || i == (rows ? 6 : 4))
      numbers[i] = std::clamp(numbers[i] + distance, 0, size - 1);
    if (i != 0) text.append(", ");
    text.append(std::to_string(numbers[i]));
  }
  return text;
}

}  // namespace

std::optional<std::string> move_notes_drawing(std::string_view stored, const formula::Move& move,
                                              const Grid& grid) {
  const std::string text = readable(stored);
  const Drawing drawing = read_drawing(text);
  const bool rows = move.axis == formula::Axis::kRows;
  const int size = rows ? grid.rows : grid.columns;
  std::vector<Edit> edits;
  const auto replace = [&](std::string_view old, std::string with) {
    const auto begin = static_cast<std::size_t>(old.data() - text.data());
    edits.push_back({begin, begin + old.size(), std::move(with)});
  };
  for (const Shape& shape : drawing.shapes) {
    const std::vector<int> numbers = numbers_of(shape.anchor);
    int from = 0;
    if (shape.note) from = rows ? shape.note->row : shape.note->column;
    else if (numbers.empty()) continue;
    else from = numbers[rows ? 2 : 0];
    const auto to = formula::moved(from, move);
    if (shape.note && !to) {
      edits.push_back({shape.begin, shape.end, ""});
      continue;
    }
    const int distance = to.value_or(move.at) - from;
    if (distance == 0) continue;
    if (shape.note) replace(rows ? shape.row : shape.column, std::to_string(from + distance));
    if (!numbers.empty()) replace(shape.anchor, moved_anchor(numbers, rows, distance, size));
  }
  if (edits.empty()) return std::nullopt;
  return edited(text, std::move(edits));
}

std::optional<std::string> edit_controls(std::string_view stored, const Sheet* sheet,
                                         const FormulaEdit& edit) {
  // FmlaLink, FmlaRange and others.
  constexpr std::string_view kFormula = "Fmla";
  if (stored.find(kFormula) == std::string_view::npos) return std::nullopt;
  std::vector<Edit> edits;
  VmlTags tags(stored);
  for (VmlTag tag; tags.next(tag);) {
    const std::string_view local = package::local_name(tag.name);
    if (tag.kind != VmlTag::Kind::kStart || tag.family != VmlFamily::kExcel) continue;
    if (!local.starts_with(kFormula) || local == "FmlaMacro") continue;
    const std::size_t end = std::min(stored.find('<', tag.end), stored.size());
    std::string formula;
    if (!package::decode_xml_text(stored.substr(tag.end, end - tag.end), formula)) continue;
    const auto made = edit(sheet, formula);
    if (!made) continue;
    edits.push_back({tag.end, end, ""});
    package::append_xml_text(edits.back().text, *made);
  }
  if (edits.empty()) return std::nullopt;
  return edited(stored, std::move(edits));
}

}  // namespace engine::xlsx
