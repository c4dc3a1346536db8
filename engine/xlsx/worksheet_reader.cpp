#include "engine/xlsx/worksheet_reader.h"

#include <memory>
#include <string>
#include <utility>

#include "engine/package/xml_scanner.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/rows_ahead.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

using Token = package::XmlScanner::Token;

void read_worksheet(package::BlockReader& reader, std::string_view part,
                    const SheetContext& context, const RowFilter& filter, SheetContents& sheet,
                    SheetPart& remains) {
  package::XmlScanner scanner(reader, part);
  if (scanner.next() != Token::Start || scanner.name() != "worksheet")
    scanner.fail("not a worksheet");
  const std::string_view root = scanner.qualified_name();
  const std::string prefix(root.substr(0, root.size() - scanner.name().size()));
  // One of another namespace has no place where its cells could be written again.
  if (scanner.root_family(package::prefix_of(root)) != package::Family::Main)
    scanner.fail("not a worksheet");
  std::string tree(scanner.root_tag());
  const std::string end = std::string("</").append(root).append(">");
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
    if (prefix.empty() && filter.keeps_all() && !scanner.self_closing()) {
      RowsAhead ahead(reader, part, context);
      rows.read(&ahead);
    } else {
      rows.read();
    }
  }
  if (!found) tree.append(cells);
  auto made = package::XmlTree::parse(tree.append(end), part);
  read_elements(made.root(), {context, sheet, remains});
  made.settle();
  remains.tree = std::make_shared<const package::XmlTree>(std::move(made));
}

}  // namespace engine::xlsx
