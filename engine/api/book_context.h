// What all objects of a book share: its contents, its message, and the objects handed out.
//
// The body of every operation runs inside the context's guard, run() or run_always(): nothing else
// begins an operation, and no exception but std::bad_alloc gets past it. A body is done, answers,
// or refuses: return book.refuse(false, messages::empty("font name")). Objects are made when they
// are first asked for and stay allocated as long as the book. Contents that are replaced or removed
// go at once; the objects that stood for them are detached and refuse all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/workbook/codec.h"
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

  // Runs the body of an operation and gives what it gives. Where the object has left the book or
  // only the book's information was loaded the body does not run; then, and when the body throws,
  // the message tells why and the result is `failure`. Short memory passes, as it does from every
  // operation. `gone` is what messages call the object if it has left the book, else null.
  template <class Failure, class Body>
  std::invoke_result_t<Body&> run(const std::string_view* gone, Failure failure, Body&& body) {
    return run_always(failure, [&]() -> std::invoke_result_t<Body&> {
      if (gone || contents_.info_only) [[unlikely]] {
        refuse_entry(gone);
        return failure;
      }
      return body();
    });
  }
  // The same of an operation without a result.
  template <class Body>
  void run(const std::string_view* gone, Body&& body) {
    run(gone, false, [&] { return body(), true; });
  }

  // The same of an operation that works on a book of which only the information was loaded, too.
  template <class Failure, class Body>
  std::invoke_result_t<Body&> run_always(Failure failure, Body&& body) {
    refused_ = false;
    try {
      return body();
    } catch (...) {
      refuse_exception();
      return failure;
    }
  }
  template <class Body>
  void run_always(Body&& body) {
    run_always(false, [&] { return body(), true; });
  }

  // The message. The text of a refusal is made before anything is set, so that short memory leaves
  // the message at "ok".
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
  // Whether something of that many has the index; else the message is set.
  bool check_index(std::string_view thing, int index, std::size_t count);

  // What all books of this one's kind have in common.
  const Codec& codec() const { return codec_; }
  BookContents& contents() { return contents_; }
  Workbook& workbook() { return *contents_.workbook; }
  Document& document() { return *contents_.document; }
  // Those of the file are the first.
  std::vector<Picture>& pictures();
  // One with its bytes; null, with the message set, when there is none of that index.
  const Picture* find_picture(int index);
  // Reused by every formula that is parsed.
  formula::Formula& formula() { return formula_; }

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

  // Replaces the contents and detaches every object of the former ones.
  void exchange(BookContents contents) noexcept;
  // Detaches the object of a sheet that leaves the book.
  void detach(const Sheet& sheet) noexcept;

 private:
  [[gnu::cold]] void refuse_entry(const std::string_view* gone);
  [[gnu::cold]] void refuse_exception();
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

// What a book hands out. It refuses everything once it has left the book.
class BookPart {
 public:
  BookPart(const BookPart&) = delete;
  BookPart& operator=(const BookPart&) = delete;

  BookContext& book() const { return book_; }
  bool detached() const { return detached_; }
  void detach() noexcept { detached_ = true; }

 protected:
  // `thing` is what messages call the object.
  BookPart(BookContext& book, std::string_view thing) : book_(book), thing_(thing) {}
  ~BookPart() = default;

  // Every operation of the object is a run(failure, body) or, without a result, a run(body).
  template <class... Operation>
  decltype(auto) run(Operation&&... operation) const {
    return book_.run(detached_ ? &thing_ : nullptr, std::forward<Operation>(operation)...);
  }

  BookContext& book_;

 private:
  const std::string_view thing_;
  bool detached_ = false;
};

}  // namespace engine::api
