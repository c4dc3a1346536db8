// Operations of a book on its list of sheets.
#include <algorithm>

#include "engine/api/book_object.h"
#include "engine/api/messages.h"
#include "engine/api/name_rules.h"
#include "engine/api/sheet_object.h"
#include "engine/text/wide.h"
#include "engine/workbook/sheet_operations.h"

namespace engine::api {

namespace {

libxl::SheetType type_of(SheetKind kind) {
  switch (kind) {
    case SheetKind::kWorksheet:
      return libxl::SheetWorksheet;
    case SheetKind::kChart:
      return libxl::SheetChart;
    case SheetKind::kOther:
      break;
  }
  return libxl::SheetUnknown;
}

}  // namespace

bool BookObject::check_sheet_index(int index) const {
  return book_.check_index("sheet", index, book_.workbook().sheets().size());
}

// A sheet to copy: null stays null.
bool BookObject::check_original(const libxl::Sheet* original, const Sheet** sheet) const {
  if (!original) return true;
  const auto& object = static_cast<const SheetObject&>(*original);
  if (&object.book() != &book_) return book_.refuse(false, messages::foreign("sheet"));
  if (!object.sheet()) return book_.refuse(false, messages::gone("sheet"));
  *sheet = object.sheet();
  return true;
}

libxl::Sheet* BookObject::addSheet(const wchar_t* name, libxl::Sheet* initSheet) {
  return run(nullptr, [&] { return insert(book_.workbook().sheets().size(), name, initSheet); });
}

libxl::Sheet* BookObject::insertSheet(int index, const wchar_t* name, libxl::Sheet* initSheet) {
  return run(nullptr, [&]() -> libxl::Sheet* {
    const std::size_t count = book_.workbook().sheets().size();
    if (index < 0 || static_cast<std::size_t>(index) > count) {
      const auto last = static_cast<int>(count);
      return book_.refuse(nullptr, messages::out_of_range("sheet position", index, 0, last));
    }
    return insert(static_cast<std::size_t>(index), name, initSheet);
  });
}

libxl::Sheet* BookObject::insert(std::size_t position, const wchar_t* name,
                                 const libxl::Sheet* original) {
  Workbook& workbook = book_.workbook();
  std::string text = to_utf8(name);
  const Sheet* model = nullptr;
  if (!check_sheet_name(book_, text) || !check_original(original, &model)) return nullptr;
  if (model && model->loading == Loading::kPartly)
    return book_.refuse(nullptr, messages::sheet_partly_loaded(model->name()));
  if (workbook.sheets().size() >= workbook.limits.sheets)
    return book_.refuse(nullptr, messages::too_many("sheets", workbook.limits.sheets));
  NewSheet made = model ? make_copy(workbook, book_.document(), *model, std::move(text))
                        : make_sheet(workbook, book_.document(), std::move(text));
  make_room(workbook, made);
  SheetObject* object = book_.sheet_object(*made.sheet);
  place_sheet(workbook, book_.document(), position, std::move(made));
  if (model) book_.contents().values_changed = true;
  return object;
}

libxl::Sheet* BookObject::getSheet(int index) const {
  return run(nullptr, [&]() -> libxl::Sheet* {
    if (!check_sheet_index(index)) return nullptr;
    Workbook& workbook = book_.workbook();
    Sheet& sheet = *workbook.sheets()[static_cast<std::size_t>(index)];
    if (sheet.kind != SheetKind::kWorksheet)
      return book_.refuse(nullptr, messages::not_worksheet(index));
    if (sheet.loading == Loading::kExcluded)
      return book_.refuse(nullptr, messages::sheet_not_loaded(sheet.name()));
    if (sheet.loading == Loading::kUnread || sheet.loading == Loading::kMissing)
      book_.document().read_sheet(workbook, sheet);
    return book_.sheet_object(sheet);
  });
}

const wchar_t* BookObject::getSheetName(int index) const {
  return book_.run_always(nullptr, [&]() -> const wchar_t* {
    if (!check_sheet_index(index)) return nullptr;
    return book_.give(book_.workbook().sheets()[static_cast<std::size_t>(index)]->name());
  });
}

libxl::SheetType BookObject::sheetType(int index) const {
  return book_.run_always(libxl::SheetUnknown, [&] {
    if (!check_sheet_index(index)) return libxl::SheetUnknown;
    return type_of(book_.workbook().sheets()[static_cast<std::size_t>(index)]->kind);
  });
}

bool BookObject::moveSheet(int srcIndex, int dstIndex) {
  return run(false, [&] {
    if (!check_sheet_index(srcIndex) || !check_sheet_index(dstIndex)) return false;
    move_sheet(book_.workbook(), static_cast<std::size_t>(srcIndex),
               static_cast<std::size_t>(dstIndex));
    if (srcIndex != dstIndex) book_.contents().values_changed = true;
    return true;
  });
}

bool BookObject::delSheet(int index) {
  return run(false, [&] {
    if (!check_sheet_index(index)) return false;
    const auto position = static_cast<std::size_t>(index);
    book_.detach(*delete_sheet(book_.workbook(), book_.document(), position));
    book_.contents().values_changed = true;
    return true;
  });
}

int BookObject::sheetCount() const {
  return book_.run_always(0, [&] { return static_cast<int>(book_.workbook().sheets().size()); });
}

int BookObject::activeSheet() const {
  return book_.run_always(0, [&] { return static_cast<int>(book_.workbook().active_sheet); });
}

void BookObject::setActiveSheet(int index) {
  run([&] {
    if (!check_sheet_index(index)) return;
    Workbook& workbook = book_.workbook();
    const auto position = static_cast<std::size_t>(index);
    if (workbook.sheets()[position]->visibility != SheetVisibility::kVisible)
      return book_.refuse(messages::sheet_hidden(index));
    activate_sheet(workbook, book_.document(), position);
  });
}

}  // namespace engine::api
