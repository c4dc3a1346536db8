// Sequences of changes drawn by lot. What a book is after them, it is after it was saved and
// loaded, and it goes on in the same way; a book of which only some rows are loaded becomes what
// the whole one becomes.
#include "tests/api/book_text.h"
#include "tests/api/files.h"
#include "tests/api/random_changes.h"
#include "tests/xlsx/rich_package.h"

namespace {

using Texts = std::vector<std::string>;

constexpr ReadArea kArea{kChangedRows + 6, kChangedColumns + 4};
constexpr std::uint32_t kSeeds = 12;
constexpr int kChanges = 60;
constexpr int kChangesUntilSaved = 20;

OwnedBook loaded(const std::string& bytes) {
  OwnedBook book(xlCreateXMLBookW());
  EXPECT_TRUE(load(*book, bytes)) << book->errorMessage();
  return book;
}

std::string rich_bytes() { return engine::xlsx::zip(engine::xlsx::rich_package()); }

// One change of a book, and what it became.
struct Step {
  std::string name;
  std::string message;
  Texts text;
};

Step make_step(libxl::Book& book, Lot lot) {
  Step step;
  step.name = change_book(book, lot);
  step.message = book.errorMessage();
  step.text = text_of(book, kArea);
  return step;
}

// A book, and another that was loaded from what it saved, change alike.
void run_sequence(OwnedBook book, std::uint32_t seed) {
  Texts before = text_of(*book, kArea);
  OwnedBook twin;
  for (int i = 0; i < kChanges; ++i) {
    const Lot lot(seed * 1000 + static_cast<std::uint32_t>(i));
    const Step step = make_step(*book, lot);
    SCOPED_TRACE("change " + std::to_string(i) + " " + step.name + ": " + step.message);
    if (step.message != "ok") {
      ASSERT_EQ(difference(before, step.text), "");
    }
    if (twin) {
      const Step its = make_step(*twin, lot);
      ASSERT_EQ(its.message, step.message);
      ASSERT_EQ(difference(step.text, its.text), "");
    }
    before = step.text;
    if ((i + 1) % kChangesUntilSaved != 0) continue;
    twin = loaded(saved(*book));
    // Header cells of tables have become texts.
    before = text_of(*book, kArea);
    ASSERT_EQ(difference(before, text_of(*twin, kArea)), "");
  }
}

TEST(RandomSequences, OfANewBookAreWhatItsFileSays) {
  for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    Stage stage;
    stage.book->addSheet(L"It's more");
    ASSERT_NO_FATAL_FAILURE(run_sequence(std::move(stage.book), seed));
  }
}

TEST(RandomSequences, OfALoadedBookAreWhatItsFileSays) {
  const std::string bytes = rich_bytes();
  for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    ASSERT_NO_FATAL_FAILURE(run_sequence(loaded(bytes), seed));
  }
}

// What is done to some rows of a sheet, while nothing else is loaded, is what is done to it in the
// whole book; or it is refused.
TEST(RandomSequences, WithWhatBooksFollowUntilSaved) {
  for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    OwnedBook book = loaded(rich_bytes());
    for (int round = 0; round < kChanges / kChangesUntilSaved; ++round) {
      Lot lot(seed * 1000 + static_cast<std::uint32_t>(round));
      for (int i = 0; i < kChangesUntilSaved; ++i) {
        change_book(*book, lot);
        if (book->sheetType(0) == libxl::SheetWorksheet) change_until_saved(*book, 0, lot);
      }
      const std::string bytes = saved(*book);
      const Texts before = text_of(*book, kArea);
      book = loaded(bytes);
      ASSERT_EQ(difference(before, text_of(*book, kArea)), "");
    }
  }
}

TEST(RandomSequences, OfSomeRowsLeaveTheOthersAsTheyAre) {
  constexpr int kRowFirst = 4;
  constexpr int kRowLast = 15;
  for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    OwnedBook whole = loaded(rich_bytes());
    for (int i = 0; i < kChanges; ++i) {
      Lot lot(seed * 1000 + static_cast<std::uint32_t>(i));
      change_book(*whole, lot);
    }
    const std::string bytes = saved(*whole);
    whole = loaded(bytes);
    const int sheet = static_cast<int>(seed) % whole->sheetCount();
    if (whole->sheetType(sheet) != libxl::SheetWorksheet) continue;
    OwnedBook part(xlCreateXMLBookW());
    ASSERT_TRUE(load(*part, bytes, sheet, kRowFirst, kRowLast)) << part->errorMessage();
    for (int i = 0; i < kChanges; ++i) {
      Lot lot(seed * 1000 + static_cast<std::uint32_t>(i) + 500);
      Lot same = lot;
      const std::string name(change_sheet(*part, sheet, lot));
      const std::string message = part->errorMessage();
      SCOPED_TRACE("change " + std::to_string(i) + " " + name + ": " + message);
      if (message != "ok") continue;
      change_sheet(*whole, sheet, same);
      ASSERT_EQ(std::string(whole->errorMessage()), "ok");
    }
    const OwnedBook again = loaded(saved(*part));
    saved(*whole);
    ASSERT_EQ(difference(text_of(*whole, kArea), text_of(*again, kArea)), "");
  }
}

}  // namespace
