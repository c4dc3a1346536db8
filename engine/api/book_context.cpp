#include "engine/api/book_context.h"

#include <exception>
#include <new>

#include "engine/api/font.h"
#include "engine/api/format.h"
#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/package/output.h"
#include "engine/text/wide.h"

namespace engine::api {

namespace {

// The object at a list position, made when there is none.
template <class Object>
Object* object_at(std::vector<Object*>& present, std::vector<std::unique_ptr<Object>>& all,
                  std::uint32_t index, BookContext& book) {
  if (index >= present.size()) present.resize(index + 1);
  if (!present[index]) {
    all.push_back(std::make_unique<Object>(book, index));
    present[index] = all.back().get();
  }
  return present[index];
}

}  // namespace

BookContext::BookContext(const Codec& codec, BookContents contents)
    : codec_(codec), contents_(std::move(contents)) {}

BookContext::~BookContext() = default;

bool BookContext::check_index(std::string_view thing, int index, std::size_t count) {
  if (index >= 0 && static_cast<std::size_t>(index) < count) return true;
  return refuse(false, messages::index(thing, index, count));
}

std::vector<Picture>& BookContext::pictures() {
  document().read_pictures(workbook());
  return workbook().pictures;
}

const Picture* BookContext::find_picture(int index) {
  if (!check_index("picture", index, pictures().size())) return nullptr;
  document().read_picture(workbook(), static_cast<std::size_t>(index));
  return &workbook().pictures[static_cast<std::size_t>(index)];
}

const wchar_t* BookContext::give(std::string_view utf8) {
  to_wide(utf8, given_);
  return given_.c_str();
}

FormatObject* BookContext::make_format_object(std::uint32_t index) {
  // Cells of damaged files name formats that the list does not have: they look like the first.
  if (index >= workbook().styles.format_count()) index = 0;
  return object_at(formats_, all_formats_, index, *this);
}

FontObject* BookContext::font_object(std::uint32_t index) {
  return object_at(fonts_, all_fonts_, index, *this);
}

void BookContext::prepare_format_object() {
  object_at(formats_, all_formats_, workbook().styles.format_count(), *this);
}

void BookContext::prepare_font_object() {
  object_at(fonts_, all_fonts_, workbook().styles.font_count(), *this);
}

SheetObject* BookContext::sheet_object(Sheet& sheet) {
  const auto place = sheets_.try_emplace(&sheet).first;
  if (!place->second) {
    all_sheets_.push_back(std::make_unique<SheetObject>(*this, sheet));
    place->second = all_sheets_.back().get();
  }
  return place->second;
}

void BookContext::exchange(BookContents contents) noexcept {
  for (FormatObject* format : formats_)
    if (format) format->detach();
  for (FontObject* font : fonts_)
    if (font) font->detach();
  for (const auto& [sheet, object] : sheets_)
    if (object) object->detach();
  formats_.clear();
  fonts_.clear();
  sheets_.clear();
  contents_ = std::move(contents);
}

void BookContext::detach(const Sheet& sheet) noexcept {
  const auto found = sheets_.find(&sheet);
  if (found == sheets_.end()) return;
  if (found->second) found->second->detach();
  sheets_.erase(found);
}

void BookContext::refuse_entry(const std::string_view* gone) {
  refuse(gone ? messages::gone(*gone) : messages::only_information());
}

// Called while an exception is handled.
void BookContext::refuse_exception() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const package::FileError& error) {
    refuse(contents_.source + error.what());
  } catch (const package::LimitError& error) {
    refuse(error.what());
  } catch (const std::exception& error) {
    refuse(messages::unexpected(error.what()));
  }
}

}  // namespace engine::api
