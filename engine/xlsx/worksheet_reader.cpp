#include "engine/xlsx/worksheet_reader.h"

#include <algorithm>
#include <string>

#include "engine/package/xml_scanner.h"
#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/workbook/font_metrics.h"
#include "engine/workbook/metrics.h"

namespace engine::xlsx {

namespace {

using package::Family;
using Token = package::XmlScanner::Token;

// Makes the tree of what stands around the rows and takes from it what the model holds.
class TreeReader {
 public:
  TreeReader(std::string_view part, const SheetContext& context, SheetContents& sheet,
             SheetPart& remains)
      : part_(part), context_(context), sheet_(sheet), remains_(remains) {}

  void parse_tree(const std::string& head_and_tail);

 private:
  void read_default_sizes(pugi::xml_node format);
  void read_columns(pugi::xml_node columns);

  const std::string_view part_;
  const SheetContext& context_;
  SheetContents& sheet_;
  SheetPart& remains_;
};

void TreeReader::parse_tree(const std::string& head_and_tail) {
  remains_.tree = package::XmlTree::parse(head_and_tail, part_);
  remains_.tree.settle();
  const pugi::xml_node root = remains_.tree.root();
  read_columns(package::child(root, Family::Main, "cols"));
  const pugi::xml_node views = package::child(root, Family::Main, "sheetViews");
  const pugi::xml_node view = package::child(views, Family::Main, "sheetView");
  remains_.selected = view.attribute("tabSelected").as_bool();
  read_default_sizes(package::child(root, Family::Main, "sheetFormatPr"));
}

void TreeReader::read_default_sizes(pugi::xml_node format) {
  sheet_.digit_pixels = digit_pixels(context_.workbook.styles.font(0));
  const auto width = parse_number(format.attribute("defaultColWidth").value());
  if (width && *width >= 0 && *width <= 255) sheet_.default_column_width = *width;
  sheet_.base_column_width = std::clamp(format.attribute("baseColWidth").as_int(8), 0, 255);
  const auto height = parse_number(format.attribute("defaultRowHeight").value());
  if (height && *height >= 0 && *height <= 409.5)
    sheet_.default_row_pixels = pixels_of_points(*height);
}

void TreeReader::read_columns(pugi::xml_node columns) {
  for (const pugi::xml_node node : package::children(columns, Family::Main, "col")) {
    ColumnProperties one;
    one.first = node.attribute("min").as_int() - 1;
    one.last = std::min(node.attribute("max").as_int(), context_.workbook.limits.grid.columns) - 1;
    const int from = sheet_.columns.empty() ? 0 : sheet_.columns.back().last + 1;
    one.first = std::max(one.first, from);
    if (one.first > one.last) continue;
    if (const auto width = parse_number(node.attribute("width").value())) one.width = *width;
    one.style = context_.format(node.attribute("style").as_uint());
    one.custom_width = node.attribute("customWidth").as_bool();
    one.hidden = node.attribute("hidden").as_bool();
    one.best_fit = node.attribute("bestFit").as_bool();
    one.collapsed = node.attribute("collapsed").as_bool();
    one.outline_level =
        static_cast<std::uint8_t>(std::min(node.attribute("outlineLevel").as_uint(), 7U));
    sheet_.columns.push_back(one);
  }
}

}  // namespace

void read_worksheet(package::BlockReader& reader, std::string_view part,
                    const SheetContext& context, const RowFilter& filter, SheetContents& sheet,
                    SheetPart& remains) {
  package::XmlScanner scanner(reader, part);
  if (scanner.next() != Token::Start || scanner.name() != "worksheet")
    scanner.fail("not a worksheet");
  std::string tree(scanner.root_tag());
  const std::string end = std::string("</").append(scanner.qualified_name()).append(">");
  const std::string prefix(
      scanner.qualified_name().substr(0, scanner.qualified_name().size() - scanner.name().size()));
  const std::string cells = std::string("<").append(prefix).append("sheetData/>");
  RowReader rows(scanner, part, context, filter, sheet, remains);
  bool found = false;
  if (scanner.self_closing()) tree.erase(tree.size() - 2, 1);
  while (scanner.next() != Token::Finish) {
    if (scanner.token() == Token::Text) tree.append(scanner.raw());
    if (scanner.token() != Token::Start) continue;
    if (scanner.name() != "sheetData") {
      scanner.append_element(tree);
      continue;
    }
    if (!found) tree.append(cells);
    found = true;
    rows.read();
  }
  if (!found) tree.append(cells);
  TreeReader(part, context, sheet, remains).parse_tree(tree.append(end));
}

}  // namespace engine::xlsx
