#include "engine/xlsx/elements/merges.h"

#include <optional>
#include <string>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

namespace {

using package::Family;

std::optional<CellRange> range_of(pugi::xml_node merge, const Workbook& book) {
  return formula::parse_range(merge.attribute("ref").value(), book.limits.grid);
}

}  // namespace

void read_merges(pugi::xml_node element, const SheetReading& to) {
  for (const pugi::xml_node merge : package::children(element, Family::Main, "mergeCell"))
    if (const auto range = range_of(merge, to.context.workbook)) to.sheet.merges.add(*range);
}

// Elements of ranges that are gone go, new ones are added behind the others. What names no range
// that the model could have stays.
void patch_merges(pugi::xml_node root, const SheetPatching& from) {
  const std::vector<CellRange> ranges = from.sheet.contents().merges.all();
  pugi::xml_node list = package::child(root, Family::Main, "mergeCells");
  auto next = ranges.begin();
  bool changed = false;
  std::size_t count = 0;
  for (const pugi::xml_node merge : package::children(list, Family::Main, "mergeCell")) {
    const auto range = range_of(merge, from.book);
    const bool stays = !range || (next != ranges.end() && *range == *next);
    if (stays) ++count;
    else changed |= list.remove_child(merge);
    if (stays && range) ++next;
  }
  if (next == ranges.end() && !changed) return;
  if (!list) list = worksheet_child(root, "mergeCells");
  for (; next != ranges.end(); ++next) {
    set_attribute(package::append_child(list, "mergeCell"), "ref", formula::print_range(*next));
    ++count;
  }
  if (count == 0) root.remove_child(list);
  else set_attribute(list, "count", std::to_string(count));
}

}  // namespace engine::xlsx
