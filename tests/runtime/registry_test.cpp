#include "runtime/registry.h"

#include <gtest/gtest.h>

#include <thread>

#include "runtime/error_state.h"
#include "tests/support/fake_library.h"

namespace {

using libxl::Book;
using libxl::Sheet;

struct Failure {
  short code;
  std::string message;
};

template <class Action>
Failure failure_of(Action action) {
  try {
    action();
  } catch (const KelPlugin_Exception& failure) {
    return {failure.code(), failure.what()};
  }
  return {};
}

class Registry : public testing::Test {
 protected:
  long add_book() { return set_object(0, "Book", static_cast<Book*>(&workbook_.book)); }
  long add_sheet(long parent) {
    return set_object(parent, "Sheet", static_cast<Sheet*>(&workbook_.sheet));
  }

  fakes::Workbook workbook_;
};

TEST_F(Registry, HandlesRiseByOneOnEveryThread) {
  const long first = add_book();
  long second = 0;
  std::thread([&] { second = add_book(); }).join();
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(add_book(), first + 2);
}

TEST_F(Registry, TellsWhyAHandleIsRefused) {
  const long book = add_book();
  const long sheet = add_sheet(book);
  EXPECT_EQ(get_object(0, "Book"), nullptr);
  EXPECT_EQ(get_object(sheet, "Sheet"), static_cast<Sheet*>(&workbook_.sheet));

  const Failure unknown = failure_of([] { get_object(123456, "Sheet"); });
  EXPECT_EQ(unknown.code, 10);
  EXPECT_EQ(unknown.message, "Sheet object  #123456 not found");

  const Failure mistyped = failure_of([&] { get_object(sheet, "Book"); });
  EXPECT_EQ(mistyped.code, -2);
  EXPECT_EQ(mistyped.message, "Book expected. Found Sheet");
}

TEST_F(Registry, AHandleIsKnownOnItsThreadOnly) {
  const long book = add_book();
  Failure failure{};
  std::thread([&] { failure = failure_of([&] { get_object(book, "Book"); }); }).join();
  EXPECT_EQ(failure.code, 10);
}

TEST_F(Registry, ReleaseForgetsTheBookAndItsChildren) {
  const long book = add_book();
  const long other = add_book();
  const long sheets[] = {add_sheet(book), add_sheet(book)};
  const long kept = add_sheet(other);
  release_objects(book);
  release_objects(book);
  for (const long handle : {book, sheets[0], sheets[1]}) EXPECT_FALSE(is_object(handle, "Sheet"));
  EXPECT_FALSE(is_object(book, "Book"));
  EXPECT_TRUE(is_object(kept, "Sheet"));
}

// The book's record is rewritten, but the message asked for stays that of the book: a call of
// errorMessage through the sheet would be a call of some other operation.
TEST_F(Registry, RegisteringUnderASheetRewritesTheBook) {
  const long book = add_book();
  const long lost = add_sheet(book);
  const long sheet = add_sheet(book);
  const long value = set_object(sheet, "CellType", value_as_object(4));

  EXPECT_EQ(failure_of([&] { get_object(book, "Book"); }).message, "Book expected. Found Sheet");
  EXPECT_EQ(get_object(book, "Sheet"), static_cast<Sheet*>(&workbook_.sheet));
  EXPECT_EQ(object_as_value(get_object(value, "CellType")), 4);

  workbook_.scenario.message = "sheet 3 is out of range 0..1";
  for (const long handle : {book, lost, sheet, value}) {
    EXPECT_TRUE(set_last_error_message(handle));
    EXPECT_EQ(g_last_error_message, workbook_.scenario.message);
  }

  // Its children are those of the sheet now, so the earlier ones outlive it, without an owner.
  release_objects(book);
  EXPECT_FALSE(is_object(value, "CellType"));
  const Failure failure = failure_of([&] { set_last_error_message(lost); });
  EXPECT_EQ(failure.code, 10);
  EXPECT_EQ(failure.message, "KelPlugin_Exception");
}

TEST_F(Registry, AnOkMessageIsNone) {
  const long sheet = add_sheet(add_book());
  g_last_error_message = "old";
  EXPECT_FALSE(set_last_error_message(sheet));
  EXPECT_EQ(g_last_error_message, "");
  g_last_error_message = "old";
  EXPECT_FALSE(set_last_error_message(987654));
  EXPECT_EQ(g_last_error_message, "");
}

TEST_F(Registry, NegativeNumbersPassThroughAnObject) {
  for (const int value : {0, -2, 255, 2147483647})
    EXPECT_EQ(object_as_value(value_as_object(value)), value);
}

}  // namespace
