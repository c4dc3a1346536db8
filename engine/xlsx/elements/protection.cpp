#include "engine/xlsx/elements/protection.h"

#include <charconv>

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

namespace {

using package::Family;

// The attributes tell what is forbidden.
struct Action {
  Allowed flag;
  const char* attribute;
  bool usually_forbidden;
};
constexpr Action kActions[] = {
    {kAllowObjects, "objects", false},
    {kAllowScenarios, "scenarios", false},
    {kAllowFormatCells, "formatCells", true},
    {kAllowFormatColumns, "formatColumns", true},
    {kAllowFormatRows, "formatRows", true},
    {kAllowInsertColumns, "insertColumns", true},
    {kAllowInsertRows, "insertRows", true},
    {kAllowInsertHyperlinks, "insertHyperlinks", true},
    {kAllowDeleteColumns, "deleteColumns", true},
    {kAllowDeleteRows, "deleteRows", true},
    {kAllowSelectLockedCells, "selectLockedCells", false},
    {kAllowSort, "sort", true},
    {kAllowAutoFilter, "autoFilter", true},
    {kAllowPivotTables, "pivotTables", true},
    {kAllowSelectUnlockedCells, "selectUnlockedCells", false},
};

constexpr int kHexadecimal = 16;

std::uint16_t parse_short_hash(std::string_view text) {
  std::uint16_t hash = 0;
  std::from_chars(text.data(), text.data() + text.size(), hash, kHexadecimal);
  return hash;
}

std::string short_hash_text(std::uint16_t hash) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[hash >> shift & 15];
  return text;
}

// What stands in an element that protects nothing says nothing of the sheet.
Protection protection_of(pugi::xml_node element) {
  Protection made;
  made.on = element.attribute("sheet").as_bool();
  if (!made.on) return made;
  made.allowed = 0;
  for (const auto& [flag, attribute, usually_forbidden] : kActions)
    if (!element.attribute(attribute).as_bool(usually_forbidden)) made.allowed |= flag;
  made.password.algorithm = element.attribute("algorithmName").value();
  made.password.value = element.attribute("hashValue").value();
  made.password.salt = element.attribute("saltValue").value();
  made.password.rounds = element.attribute("spinCount").as_uint();
  made.password.short_hash = parse_short_hash(element.attribute("password").value());
  return made;
}

}  // namespace

void read_sheet_protection(pugi::xml_node element, const SheetReading& to) {
  to.sheet.protection = protection_of(element);
}

void patch_sheet_protection(pugi::xml_node root, const SheetPatching& from) {
  const Protection& wanted = from.sheet.contents().protection;
  pugi::xml_node element = package::child(root, Family::Main, "sheetProtection");
  if (protection_of(element) == wanted) return;
  if (!wanted.on) {
    root.remove_child(element);
    return;
  }
  if (!element) element = worksheet_child(root, "sheetProtection");
  const PasswordHash& password = wanted.password;
  const bool is_short = password.algorithm.empty();
  settle_attribute(element, "password", short_hash_text(password.short_hash),
                   password.short_hash == 0);
  settle_attribute(element, "algorithmName", password.algorithm, is_short);
  settle_attribute(element, "hashValue", password.value, is_short);
  settle_attribute(element, "saltValue", password.salt, is_short);
  settle_attribute(element, "spinCount", std::to_string(password.rounds), is_short);
  set_attribute(element, "sheet", "1");
  for (const auto& [flag, attribute, usually_forbidden] : kActions)
    settle_flag(element, attribute, (wanted.allowed & flag) == 0, usually_forbidden);
}

}  // namespace engine::xlsx
