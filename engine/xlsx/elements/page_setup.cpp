#include "engine/xlsx/elements/page_setup.h"

#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr struct {
  const char* attribute;
  double PageSetup::*margin;
} kMargins[] = {
    {"left", &PageSetup::left_margin},     {"right", &PageSetup::right_margin},
    {"top", &PageSetup::top_margin},       {"bottom", &PageSetup::bottom_margin},
    {"header", &PageSetup::header_margin}, {"footer", &PageSetup::footer_margin},
};

constexpr struct {
  const char* attribute;
  bool PageSetup::*option;
} kOptions[] = {
    {"gridLines", &PageSetup::gridlines},
    {"headings", &PageSetup::headings},
    {"horizontalCentered", &PageSetup::centered_across},
    {"verticalCentered", &PageSetup::centered_down},
};

constexpr struct {
  const char* attribute;
  int PageSetup::*number;
  int usual;
} kNumbers[] = {
    {"paperSize", &PageSetup::paper, 0},
    {"scale", &PageSetup::zoom, 100},
    {"fitToWidth", &PageSetup::pages_wide, 1},
    {"fitToHeight", &PageSetup::pages_tall, 1},
};

constexpr struct {
  const char* name;
  std::string PageSetup::*text;
} kTexts[] = {{"oddHeader", &PageSetup::header}, {"oddFooter", &PageSetup::footer}};

constexpr std::string_view kTextOrder[] = {"oddHeader",  "oddFooter",   "evenHeader",
                                           "evenFooter", "firstHeader", "firstFooter"};

// What each element says, nothing else of the page; a null one reads as the defaults that a missing
// one stands for. The same readers tell what is to be patched.

void take_options(pugi::xml_node element, PageSetup& page) {
  for (const auto& [attribute, option] : kOptions)
    page.*option = element.attribute(attribute).as_bool();
  // Programs print gridlines only where this agrees.
  page.gridlines = page.gridlines && element.attribute("gridLinesSet").as_bool(true);
}

void take_margins(pugi::xml_node element, PageSetup& page) {
  const PageSetup usual;
  for (const auto& [attribute, margin] : kMargins)
    page.*margin = parse_number(element.attribute(attribute).value()).value_or(usual.*margin);
}

void take_setup(pugi::xml_node element, PageSetup& page) {
  for (const auto& [attribute, number, usual] : kNumbers)
    page.*number = element.attribute(attribute).as_int(usual);
  page.landscape = std::string_view(element.attribute("orientation").value()) == "landscape";
}

void take_texts(pugi::xml_node element, PageSetup& page) {
  for (const auto& [name, text] : kTexts)
    page.*text = unescape(package::child(element, Family::Main, name).text().get());
}

// Settings of a printer hold for one paper.
void drop_printer_settings(pugi::xml_node element, pugi::xml_node root, const SheetPatching& from) {
  const pugi::xml_attribute link = package::attribute(element, Family::Relationships, "id");
  if (!link) return;
  const std::string id = link.value();
  element.remove_attribute(link);
  if (!mentioned_ids(root).contains(id)) from.parts.unrelate(from.remains.part, id);
}

// The element to be patched, made when it is missing; null when it says what the model does.
pugi::xml_node element_to_patch(pugi::xml_node root, const char* name, const PageSetup& page,
                                void (*take)(pugi::xml_node, PageSetup&)) {
  const pugi::xml_node element = package::child(root, Family::Main, name);
  PageSetup stored = page;
  take(element, stored);
  if (stored == page) return {};
  return element ? element : worksheet_child(root, name);
}

}  // namespace

void read_print_options(pugi::xml_node element, const SheetReading& to) {
  take_options(element, to.sheet.page);
}

void patch_print_options(pugi::xml_node root, const SheetPatching& from) {
  const PageSetup& page = from.sheet.contents().page;
  pugi::xml_node element = element_to_patch(root, "printOptions", page, take_options);
  if (!element) return;
  element.remove_attribute("gridLinesSet");
  for (const auto& [attribute, option] : kOptions) settle_flag(element, attribute, page.*option);
  remove_if_bare(element);
}

void read_margins(pugi::xml_node element, const SheetReading& to) {
  take_margins(element, to.sheet.page);
}

// An element that is there has to tell all of them.
void patch_margins(pugi::xml_node root, const SheetPatching& from) {
  const PageSetup& page = from.sheet.contents().page;
  const pugi::xml_node element = element_to_patch(root, "pageMargins", page, take_margins);
  if (!element) return;
  for (const auto& [attribute, margin] : kMargins)
    set_attribute(element, attribute, number_text(page.*margin));
}

void read_page_setup(pugi::xml_node element, const SheetReading& to) {
  take_setup(element, to.sheet.page);
}

void patch_page_setup(pugi::xml_node root, const SheetPatching& from) {
  const PageSetup& page = from.sheet.contents().page;
  pugi::xml_node element = element_to_patch(root, "pageSetup", page, take_setup);
  if (!element) return;
  PageSetup stored;
  take_setup(element, stored);
  for (const auto& [attribute, number, usual] : kNumbers)
    if (page.*number != stored.*number)
      settle_attribute(element, attribute, std::to_string(page.*number), page.*number == usual);
  if (page.landscape != stored.landscape)
    set_attribute(element, "orientation", page.landscape ? "landscape" : "portrait");
  // The sides of a paper that has no number.
  if (page.paper != stored.paper)
    for (const char* side : {"paperHeight", "paperWidth"}) element.remove_attribute(side);
  if (page.paper != stored.paper || page.landscape != stored.landscape)
    drop_printer_settings(element, root, from);
  remove_if_bare(element);
}

// Settings of a printer are not copied.
void copy_page_setup(pugi::xml_node element, const SheetCopying& /*to*/) {
  element.remove_attribute(package::attribute(element, Family::Relationships, "id"));
}

void read_header_footer(pugi::xml_node element, const SheetReading& to) {
  take_texts(element, to.sheet.page);
}

void patch_header_footer(pugi::xml_node root, const SheetPatching& from) {
  const PageSetup& page = from.sheet.contents().page;
  pugi::xml_node element = element_to_patch(root, "headerFooter", page, take_texts);
  if (!element) return;
  for (const auto& [name, text] : kTexts) {
    if ((page.*text).empty()) element.remove_child(package::child(element, Family::Main, name));
    else ordered_child(element, name, kTextOrder).text().set(escape(page.*text).c_str());
  }
  remove_if_bare(element);
}

}  // namespace engine::xlsx
