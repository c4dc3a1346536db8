#include "engine/xlsx/workbook_part.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/sheet_part.h"
#include "engine/xlsx/stored_formula.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kNewWorkbook =
    "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
    "<workbookPr/><bookViews><workbookView xWindow=\"0\" yWindow=\"0\" windowWidth=\"24000\" "
    "windowHeight=\"12000\"/></bookViews><sheets/></workbook>";

constexpr std::string_view kOrder[] = {
    "fileVersion",    "fileSharing",
    "workbookPr",     "workbookProtection",
    "bookViews",      "sheets",
    "functionGroups", "externalReferences",
    "definedNames",   "calcPr",
    "oleSize",        "customWorkbookViews",
    "pivotCaches",    "smartTagPr",
    "smartTagTypes",  "webPublishing",
    "fileRecoveryPr", "webPublishObjects",
    "extLst",
};

pugi::xml_node workbook_child(pugi::xml_node root, std::string_view name) {
  return ordered_child(root, name, kOrder);
}

SheetVisibility visibility_of(std::string_view state) {
  if (state == "hidden") return SheetVisibility::kHidden;
  return state == "veryHidden" ? SheetVisibility::kVeryHidden : SheetVisibility::kVisible;
}

std::string_view state_text(SheetVisibility visibility) {
  if (visibility == SheetVisibility::kHidden) return "hidden";
  return visibility == SheetVisibility::kVeryHidden ? "veryHidden" : "";
}

SheetKind kind_of(std::string_view relationship_kind) {
  if (relationship_kind == "worksheet") return SheetKind::kWorksheet;
  return relationship_kind == "chartsheet" ? SheetKind::kChart : SheetKind::kOther;
}

// Sets an attribute whose absence means `usual`; one that says the same already stays.
void settle(pugi::xml_node node, const char* name, std::string_view value,
            std::string_view usual = {}) {
  const pugi::xml_attribute attribute = node.attribute(name);
  const std::string_view present = attribute ? attribute.value() : usual;
  if (present != value) settle_attribute(node, name, value, value == usual);
}

std::vector<pugi::xml_node> sheet_nodes(pugi::xml_node root) {
  return package::children(package::child(root, Family::Main, "sheets"), Family::Main, "sheet");
}

std::vector<pugi::xml_node> name_nodes(pugi::xml_node root) {
  return package::children(package::child(root, Family::Main, "definedNames"), Family::Main,
                           "definedName");
}

std::string_view relationship_of(pugi::xml_node sheet) {
  return package::attribute(sheet, Family::Relationships, "id").value();
}

// The sheet that a name is local to; -1 for the whole book, nothing when there is no such sheet.
std::optional<int> scope_of(pugi::xml_node name, std::size_t sheets) {
  const pugi::xml_attribute local = name.attribute("localSheetId");
  if (!local) return -1;
  const int position = local.as_int(-1);
  if (position < 0 || static_cast<std::size_t>(position) >= sheets) return std::nullopt;
  return position;
}

// A sheet that the file does not list is a new one.
pugi::xml_node sheet_node(pugi::xml_node list, const std::vector<pugi::xml_node>& stored,
                          const SheetPart& part) {
  if (part.listed != 0) return stored[part.listed - 1];
  pugi::xml_node node = package::append_child(list, "sheet");
  node.append_attribute("name");
  node.append_attribute("sheetId") = part.id;
  package::set_attribute(node, Family::Relationships, "id", part.relationship);
  return node;
}

void patch_sheets(pugi::xml_node root, const Workbook& book, const SheetParts& parts) {
  const std::vector<pugi::xml_node> stored = sheet_nodes(root);
  pugi::xml_node list = workbook_child(root, "sheets");
  std::vector<pugi::xml_node> wanted;
  std::vector<bool> is_wanted(stored.size());
  for (const auto& sheet : book.sheets()) {
    const SheetPart& part = parts.at(sheet.get());
    const pugi::xml_node node = sheet_node(list, stored, part);
    if (part.listed != 0) is_wanted[part.listed - 1] = true;
    if (unescape(node.attribute("name").value()) != sheet->name())
      settle(node, "name", escape(sheet->name()));
    if (visibility_of(node.attribute("state").value()) != sheet->visibility)
      settle(node, "state", state_text(sheet->visibility));
    wanted.push_back(node);
  }
  if (wanted == stored) return;
  for (const pugi::xml_node node : wanted) list.append_move(node);
  for (std::size_t i = 0; i < stored.size(); ++i)
    if (!is_wanted[i]) list.remove_child(stored[i]);
}

// What the name stands for, as callers see it.
std::string definition_of(pugi::xml_node name, const Grid& grid) {
  const std::string_view stored = name.text().get();
  auto shown = shown_formula(stored, grid);
  return shown ? *std::move(shown) : std::string(stored);
}

bool says(pugi::xml_node node, const DefinedName& name, int scope, const Workbook& book,
          std::size_t sheets) {
  return unescape(node.attribute("name").value()) == name.name &&
         definition_of(node, book.limits.grid) == name.definition &&
         scope_of(node, sheets) == scope && node.attribute("hidden").as_bool() == name.hidden;
}

void patch_name(pugi::xml_node node, const DefinedName& name, int scope, const Grid& grid) {
  settle(node, "name", escape(name.name));
  settle(node, "localSheetId", scope < 0 ? "" : std::to_string(scope));
  settle_flag(node, "hidden", name.hidden);
  if (definition_of(node, grid) == name.definition) return;
  node.text().set(stored_formula(name.definition, grid).value_or(name.definition).c_str());
}

// Whether the model has the name: one that is local to a sheet which is not there is left alone as
// long as no name changes.
bool is_modelled(pugi::xml_node name, std::size_t sheets) {
  return scope_of(name, sheets) && *name.attribute("name").value() != 0;
}

// `sheets` is the number of sheets that the file had: what the stored positions count.
void patch_names(pugi::xml_node root, const Workbook& book, std::size_t sheets) {
  const std::vector<pugi::xml_node> stored = name_nodes(root);
  std::unordered_map<const Sheet*, int> positions{{nullptr, -1}};
  for (int position = 0; const auto& sheet : book.sheets()) positions[sheet.get()] = position++;
  const auto scope = [&](const DefinedName& name) { return positions.at(name.scope); };
  const auto node_of = [&](const DefinedName& name) {
    const std::size_t index = name.details.empty() ? stored.size() : std::stoul(name.details);
    return index < stored.size() ? stored[index] : pugi::xml_node();
  };
  std::vector<pugi::xml_node> modelled = stored;
  std::erase_if(modelled, [&](pugi::xml_node node) { return !is_modelled(node, sheets); });
  bool same = modelled.size() == book.names.size();
  std::size_t at = 0;
  for (auto name = book.names.begin(); same && name != book.names.end(); ++name) {
    const pugi::xml_node node = modelled[at++];
    same = node_of(*name) == node && says(node, *name, scope(*name), book, sheets);
  }
  if (same) return;
  const pugi::xml_node old = package::child(root, Family::Main, "definedNames");
  if (!book.names.empty()) {
    pugi::xml_node list = old ? package::insert_child(root, "definedNames", old)
                              : workbook_child(root, "definedNames");
    for (const DefinedName& name : book.names) {
      const pugi::xml_node model = node_of(name);
      patch_name(model ? list.append_copy(model) : package::append_child(list, "definedName"), name,
                 scope(name), book.limits.grid);
    }
  }
  root.remove_child(old);
}

// Whether a sheet may have a view that its file did not give it: that is one of a window of the
// book. Sheets that hold no cells have theirs.
bool has_new_view(const Workbook& book, const SheetParts& parts) {
  return std::ranges::any_of(book.sheets(), [&](const auto& sheet) {
    const SheetPart& part = parts.at(sheet.get());
    if (part.listed == 0) return true;
    if (sheet->kind != SheetKind::kWorksheet) return false;
    return (sheet->selected && !part.selected) ||
           (sheet->changed() && sheet->contents().view != SheetView());
  });
}

void patch_views(pugi::xml_node root, const Workbook& book, const SheetParts& parts) {
  const pugi::xml_node views = package::child(root, Family::Main, "bookViews");
  pugi::xml_node view = package::child(views, Family::Main, "workbookView");
  if (!view) {
    if (book.active_sheet == 0 && !has_new_view(book, parts)) return;
    view = package::append_child(workbook_child(root, "bookViews"), "workbookView");
  }
  if (view.attribute("activeTab").as_uint() != book.active_sheet)
    settle(view, "activeTab", std::to_string(book.active_sheet), "0");
  const std::size_t first = view.attribute("firstSheet").as_uint();
  const bool fits = first < book.sheets().size() &&
                    (first == 0 || book.sheets()[first]->visibility == SheetVisibility::kVisible);
  if (!fits) view.remove_attribute("firstSheet");
}

void patch_settings(pugi::xml_node root, const Workbook& book, bool calculate) {
  pugi::xml_node settings = package::child(root, Family::Main, "workbookPr");
  if (!settings && book.date1904) settings = workbook_child(root, "workbookPr");
  settle_flag(settings, "date1904", book.date1904);
  pugi::xml_node calculation = package::child(root, Family::Main, "calcPr");
  if (!calculation && (book.r1c1 || calculate)) calculation = workbook_child(root, "calcPr");
  settle(calculation, "refMode", book.r1c1 ? "R1C1" : "A1", "A1");
  if (calculate) settle_flag(calculation, "fullCalcOnLoad", true);
}

void read_names(pugi::xml_node root, Workbook& book) {
  std::size_t index = 0;
  for (const pugi::xml_node node : name_nodes(root)) {
    DefinedName name;
    name.details = std::to_string(index++);
    if (!is_modelled(node, book.sheets().size())) continue;
    const int scope = scope_of(node, book.sheets().size()).value_or(-1);
    name.name = unescape(node.attribute("name").value());
    name.definition = definition_of(node, book.limits.grid);
    name.hidden = node.attribute("hidden").as_bool();
    if (scope >= 0) name.scope = book.sheets()[static_cast<std::size_t>(scope)].get();
    book.names.add(std::move(name));
  }
}

}  // namespace

WorkbookPart::WorkbookPart() : document_(package::XmlTree::parse(kNewWorkbook, "new workbook")) {
  document_.settle();
}

void WorkbookPart::read(std::string_view bytes, const Parts& parts, std::string_view part,
                        Workbook& book, SheetParts& sheets) {
  document_ = package::XmlTree::parse(bytes, part);
  document_.settle();
  const pugi::xml_node root = document_.root();
  if (package::is(root, Family::BetaMain, "workbook"))
    throw package::FileError("is a workbook of an Excel 2007 beta version");
  if (!package::is(root, Family::Main, "workbook"))
    throw package::FileError("is not an .xlsx workbook");
  read_sheets(root, parts, part, book, sheets);
  read_names(root, book);
  book.date1904 = package::child(root, Family::Main, "workbookPr").attribute("date1904").as_bool();
  const std::string_view notation =
      package::child(root, Family::Main, "calcPr").attribute("refMode").value();
  book.r1c1 = notation == "R1C1";
  const pugi::xml_node view =
      package::child(package::child(root, Family::Main, "bookViews"), Family::Main, "workbookView");
  const std::size_t active = view.attribute("activeTab").as_uint();
  book.active_sheet = active < book.sheets().size() ? active : 0;
}

void WorkbookPart::read_sheets(pugi::xml_node root, const Parts& parts, std::string_view part,
                               Workbook& book, SheetParts& sheets) {
  std::set<std::string_view> taken;
  for (const pugi::xml_node node : sheet_nodes(root)) {
    auto sheet = std::make_unique<Sheet>(unescape(node.attribute("name").value()));
    SheetPart& remains = sheets[sheet.get()];
    sheet->visibility = visibility_of(node.attribute("state").value());
    sheet->loading = Loading::kUnread;
    remains.id = node.attribute("sheetId").as_uint();
    remains.relationship = relationship_of(node);
    remains.listed = static_cast<std::uint32_t>(book.sheets().size() + 1);
    last_sheet_id_ = std::max(last_sheet_id_, remains.id);
    const auto [link, stored] = parts.named_by(node, part);
    // A part is the first sheet's that it is listed for: any number more would cost no bytes.
    const bool is_own = stored && taken.insert(stored->name).second;
    if (link) {
      sheet->kind = kind_of(link->kind());
      if (is_own) remains.part = stored->name;
      if (!stored) remains.part = resolve_target(part, link->target);
    } else if (remains.relationship.empty()) {
      sheet->kind = SheetKind::kOther;  // modules of old programs are listed without a part
    }
    if (!is_own) sheet->loading = Loading::kMissing;
    book.add_sheet(std::move(sheet));
  }
  mentioned_ = mentioned_ids(root);
}

package::XmlTree WorkbookPart::patched(const Workbook& book, const SheetParts& parts,
                                       bool calculate) const {
  package::XmlTree copy = document_.copy();
  const pugi::xml_node root = copy.root();
  patch_names(root, book, sheet_nodes(root).size());
  patch_sheets(root, book, parts);
  patch_views(root, book, parts);
  patch_settings(root, book, calculate);
  return copy;
}

}  // namespace engine::xlsx
