// What all objects of a book share: its contents, its message, and the objects handed out.
//
// Every operation begins by entering the context, which sets the message to "ok", and either is
// done, answers, or refuses: return book.refuse(false, messages::empty("font name")). Objects are
// made when they are first asked for and stay allocated as long as the book. Contents that are
// replaced or removed go at once; the objects that stood for them are detached and refuse all.
//
// A FormatObject or FontObject is constructed from the context and the number of its list entry; it
// has book(), index(), detached() and a detach() that does not throw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/workbook/codec.h"
#include "engine/workbook/default_font.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"

namespace engine::api {

class FontObject;
class FormatObject;
class SheetObject;

// A workbook with the file behind it. A load makes a new one and exchanges it.
struct BookContents {
  std::unique_ptr<Workbook> workbook;
  std::unique_ptr<Document> document;
  std::string source = "the workbook data ";  // subject of messages about damage
  bool info_only = false;                     // only the list of sheets was read
  bool formulas_possible = false;             // some cell may hold a formula
  bool values_changed = false;                // of cells, since the book was loaded or begun
  bool template_from_file = false;            // the template flag is the file's, not the caller's
};

class BookContext {
 public:
  BookContext(const Codec& codec, BookContents contents);
  ~BookContext();
  BookContext(const BookContext&) = delete;
  BookContext& operator=(const BookContext&) = delete;

  // The message. The text of a refusal is made before anything is set, so that short memory leaves
  // the message at "ok".
  void begin() { refused_ = false; }
  const char* message() const { return refused_ ? message_.c_str() : "ok"; }
  void refuse(std::string text) {
    message_ = std::move(text);
    refused_ = true;
  }
  template <class T>
  T refuse(T failure, std::string text) {
    refuse(std::move(text));
    return failure;
  }

  // Enters an operation on an object. False, with the message set, when the object has left the
  // book or only the book's information was loaded. `thing` is what messages call the object.
  bool enter(bool detached, std::string_view thing) {
    refused_ = false;
    if (!detached && !contents_.info_only) [[likely]]
      return true;
    refuse_entry(detached, thing);
    return false;
  }

  // Runs what may fail because of a file; the failure becomes the message. Short memory passes, as
  // it does from every operation. `target` is the file that is written, if one is.
  template <class T, class Body>
  T attempt(T failure, Body&& body, std::string_view target = {}) {
    try {
      return body();
    } catch (...) {
      refuse_exception(target);
      return failure;
    }
  }

  // What all books of this one's kind have in common.
  const Codec& codec() const { return codec_; }
  BookContents& contents() { return contents_; }
  Workbook& workbook() { return *contents_.workbook; }
  Document& document() { return *contents_.document; }
  // Reused by every formula that is parsed.
  formula::Formula& formula() { return formula_; }
  bool info_only() const { return contents_.info_only; }

  // Whether colours are given as red, green and blue rather than as palette indices.
  bool rgb_mode() const { return rgb_mode_; }
  void set_rgb_mode(bool on) { rgb_mode_ = on; }

  // Hands out a text, valid until the next one is handed out.
  const wchar_t* give(std::string_view utf8);

  // The object of a list entry or sheet of the present contents: always the same for the same one.
  FormatObject* format_object(std::uint32_t index) {
    if (index < formats_.size() && formats_[index]) [[likely]]
      return formats_[index];
    return make_format_object(index);
  }
  FontObject* font_object(std::uint32_t index);
  // Makes the object of the entry that will be added next, so that adding it is all that is left.
  void prepare_format_object();
  void prepare_font_object();
  SheetObject* sheet_object(Sheet& sheet);

  // Changes font 0, by which columns are measured; false, with the message set, when a sheet that
  // has to follow is damaged.
  bool change_default_font(FontChange change);

  // Replaces the contents and detaches every object of the former ones.
  void exchange(BookContents contents) noexcept;
  // Detaches the object of a sheet that leaves the book.
  void detach(const Sheet& sheet) noexcept;

 private:
  void refuse_entry(bool detached, std::string_view thing);
  void refuse_exception(std::string_view target);
  FormatObject* make_format_object(std::uint32_t index);

  const Codec& codec_;
  BookContents contents_;
  std::string message_;
  bool refused_ = false;
  bool rgb_mode_ = false;
  std::wstring given_;
  formula::Formula formula_;
  // Those of the present contents, by list position; null until asked for.
  std::vector<FormatObject*> formats_;
  std::vector<FontObject*> fonts_;
  std::map<const Sheet*, SheetObject*> sheets_;
  // All that were ever handed out.
  std::vector<std::unique_ptr<FormatObject>> all_formats_;
  std::vector<std::unique_ptr<FontObject>> all_fonts_;
  std::vector<std::unique_ptr<SheetObject>> all_sheets_;
};

}  // namespace engine::api
