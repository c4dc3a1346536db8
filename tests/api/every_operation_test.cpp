// Every operation in every state of its object and its book: nothing but a message comes out.
#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <span>

#include "engine/text/wide.h"
#include "tests/api/files.h"
#include "tests/api/operations.h"
#include "tests/package/temp_folder.h"
#include "tests/package/zip_builder.h"
#include "tests/support/pictures.h"
#include "tests/xlsx/rich_package.h"

namespace {

using engine::package::testing::deflated;
using engine::package::testing::TempFolder;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Arguments that make sense on the sheet Data, whose table is A1:C3.
constexpr Round kSensible[] = {
    {0, 1.5, L"SUM(Table1[Value])", L"New"},
    {1, 12, L"[@Value]", L"Other"},
};
const std::wstring kLong(40000, L'x');
// Arguments that do not.
const Round kHostile[] = {
    {-1, -1.5, nullptr, nullptr},
    {INT_MAX, HUGE_VAL, L"", L""},
    {INT_MIN, std::nan(""), kLong.c_str(), kLong.c_str()},
    {255, 1e300, L"\x1\xD800", L"\x1\xD800"},
    {16384, 1e-300, L"'", L"'"},
};

// Operations that work on a book of which only the information was loaded, too.
const std::set<std::string_view> kAlways = {
    "Book::load",        "Book::loadRaw",    "Book::loadSheet",    "Book::loadPartially",
    "Book::loadInfo",    "Book::sheetCount", "Book::getSheetName", "Book::sheetType",
    "Book::activeSheet", "Book::datePack",   "Book::dateUnpack",   "Book::colorPack",
    "Book::colorUnpack", "Book::rgbMode",    "Book::setRgbMode",   "Book::refR1C1",
    "Book::biffVersion", "Book::isDate1904", "Book::isTemplate",   "Book::setLocale",
};

const std::string& rich_bytes() {
  static const std::string bytes = engine::xlsx::zip(engine::xlsx::rich_package());
  return bytes;
}

// "ok", or a sentence of ours.
void expect_message(const std::string& message) {
  EXPECT_NE(message, "");
  EXPECT_THAT(message, Not(HasSubstr("::")));
  EXPECT_THAT(message, Not(StartsWith("the operation failed")));
}

// The parts of a workbook as they lie in the package.
using StoredParts = std::map<std::string, std::string>;

StoredParts stored_parts(std::string_view bytes) {
  const auto archive = engine::package::testing::open_zip(bytes);
  StoredParts parts;
  for (const auto& entry : archive.entries()) {
    const auto reader = archive.open_packed(entry);
    std::string& text = parts[entry.name];
    for (auto block = reader->next(); !block.empty(); block = reader->next())
      text.append(block.data(), block.size());
  }
  return parts;
}

// The objects at position 0, as far as they are there.
Objects objects_of(libxl::Book& book) {
  Objects objects{&book, book.getSheet(0), book.format(0), book.font(0)};
  if (objects.sheet) objects.filter = objects.sheet->autoFilter();
  if (objects.filter) objects.column = objects.filter->column(0);
  return objects;
}

// A book with its files.
class Scene {
 public:
  explicit Scene(std::string bytes) {
    files_.bytes = std::move(bytes);
    parts_ = stored_parts(files_.bytes);
    folder_.write("book.xlsx", files_.bytes);
    files_.source = engine::to_wide(folder_.file("book.xlsx"));
    files_.target = engine::to_wide(folder_.file("saved.xlsx"));
    files_.picture_bytes = pictures::png(5, 4);
    folder_.write("picture.png", files_.picture_bytes);
    files_.picture = engine::to_wide(folder_.file("picture.png"));
  }

  bool load() {
    book_.reset(xlCreateXMLBookW());
    if (!::load(*book_, files_.bytes)) return false;
    objects = objects_of(*book_);
    return true;
  }

  libxl::Book& book() const { return *book_; }
  std::string message() const { return book_->errorMessage(); }
  const Files& files() const { return files_; }
  const StoredParts& parts() const { return parts_; }

  double call(const Operation& operation, const Round& round, const Objects& given) const {
    return operation.call({objects, given, round, &files_});
  }
  double call(const Operation& operation, const Round& round) const {
    return call(operation, round, objects);
  }

  Objects objects;

 private:
  TempFolder folder_;
  Files files_;
  StoredParts parts_;
  OwnedBook book_;
};

// What refusals give that is not 0.
const std::map<std::string_view, double> kFailures = {
    {"Font::color", libxl::ColorAuto},
    {"Format::alignV", libxl::AlignVBottom},
    {"Format::borderLeftColor", libxl::ColorDefaultForeground},
    {"Format::borderRightColor", libxl::ColorDefaultForeground},
    {"Format::borderTopColor", libxl::ColorDefaultForeground},
    {"Format::borderBottomColor", libxl::ColorDefaultForeground},
    {"Format::borderDiagonalColor", libxl::ColorDefaultForeground},
    {"Format::patternForegroundColor", libxl::ColorDefaultForeground},
    {"Format::patternBackgroundColor", libxl::ColorDefaultBackground},
    {"FilterColumn::index", -1},
    {"FilterColumn::filterType", libxl::FilterNone},
    {"Sheet::readError", libxl::ErrorNone},
    {"Sheet::getPicture", -1},
    {"Sheet::getHorPageBreak", -1},
    {"Sheet::getVerPageBreak", -1},
    {"Book::getPicture", libxl::PictureError},
    {"Book::addPicture", -1},
    {"Book::addPicture2", -1},
    {"Book::addPictureAsLink", -1},
};

void expect_refusal(const Scene& scene, const Operation& operation, const std::string& message) {
  SCOPED_TRACE(operation.name);
  const auto failure = kFailures.find(operation.name);
  EXPECT_EQ(scene.call(operation, kSensible[0]), failure == kFailures.end() ? 0 : failure->second);
  EXPECT_EQ(scene.message(), message);
}

// Names of operations as the interface declares them, with their classes.
std::multiset<std::string> declared_operations() {
  std::ifstream in(INTERFACE);
  std::multiset<std::string> names;
  std::string type;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("class ")) type = line.substr(6, line.find(' ', 6) - 6);
    const std::size_t end = line.find('(');
    if (!line.starts_with("  virtual ") || end == std::string::npos) continue;
    names.insert(type +
                 "::" + line.substr(line.rfind(' ', end) + 1, end - line.rfind(' ', end) - 1));
  }
  return names;
}

TEST(EveryOperation, IsListed) {
  std::multiset<std::string> declared = declared_operations();
  // They begin no operation.
  declared.erase("Book::errorMessage");
  declared.erase("Book::release");
  std::multiset<std::string> listed;
  for (const Operation& operation : every_operation()) listed.emplace(operation.name);
  EXPECT_EQ(listed, declared);
}

TEST(EveryOperation, BeginsWithAnotherMessage) {
  Scene scene(rich_bytes());
  for (const Operation& operation : every_operation()) {
    SCOPED_TRACE(operation.name);
    ASSERT_TRUE(scene.load());
    scene.book().getSheet(-77);
    const std::string former = scene.message();
    scene.call(operation, kSensible[0]);
    EXPECT_NE(scene.message(), former);
  }
}

TEST(EveryOperation, IsRefusedByWhatHasLeftTheBook) {
  Scene scene(rich_bytes());
  ASSERT_TRUE(scene.load());
  // The same contents once more, with objects of their own.
  ASSERT_TRUE(load(scene.book(), scene.files().bytes));
  for (const auto& [type, thing] :
       {std::pair("Sheet", "sheet"), std::pair("Format", "format"), std::pair("Font", "font"),
        std::pair("AutoFilter", "auto-filter"), std::pair("FilterColumn", "filter column")}) {
    for (const Operation& operation : every_operation())
      if (operation.of(type))
        expect_refusal(scene, operation, std::string("the ") + thing + " is no longer in the book");
  }
}

TEST(EveryOperation, IsRefusedWhereOnlyTheInformationWasLoaded) {
  constexpr const char* kRefusal = "only the book information was loaded";
  Scene scene(rich_bytes());
  for (const Operation& operation : every_operation()) {
    if (!operation.of("Book")) continue;
    ASSERT_TRUE(scene.load());
    ASSERT_TRUE(scene.book().loadInfo(scene.files().source.c_str()));
    if (!kAlways.contains(operation.name)) {
      expect_refusal(scene, operation, kRefusal);
    } else {
      scene.call(operation, kSensible[0]);
      EXPECT_NE(scene.message(), kRefusal) << operation.name;
    }
  }
}

TEST(EveryOperation, TakesAnyArguments) {
  Scene scene(rich_bytes());
  Stage other;
  ASSERT_TRUE(load(*other.book, rich_bytes()));
  Objects foreign = objects_of(*other.book);
  foreign.format = other.book->format(1);
  foreign.font = other.book->font(1);
  for (const Operation& operation : every_operation()) {
    SCOPED_TRACE(operation.name);
    for (const Round& round : kHostile) {
      ASSERT_TRUE(scene.load());
      const Objects former = scene.objects;
      for (const Objects& given : {Objects(), foreign, former}) {
        EXPECT_NO_THROW(scene.call(operation, round, given)) << round.number;
        expect_message(scene.message());
      }
      if (!operation.of("Book")) continue;
      // Objects that the book has no more.
      ASSERT_TRUE(load(scene.book(), scene.files().bytes));
      EXPECT_NO_THROW(scene.call(operation, round, former)) << round.number;
      expect_message(scene.message());
    }
  }
}

TEST(EveryOperation, OfAnOldBookTakesAnyArguments) {
  const Scene scene(rich_bytes());
  for (const Operation& operation : every_operation()) {
    SCOPED_TRACE(operation.name);
    const Stage old(xlCreateBookW());
    old.sheet->autoFilter()->setRef(0, 3, 0, 2);
    const Objects objects = objects_of(*old.book);
    for (const auto rounds :
         {std::span<const Round>(kSensible), std::span<const Round>(kHostile)}) {
      for (const Round& round : rounds) {
        EXPECT_NO_THROW(operation.call({objects, objects, round, &scene.files()}));
        expect_message(old.message());
      }
    }
  }
}

// Damage.

// The other worksheet, as far as the book has it.
std::optional<double> read_other_sheet(libxl::Book& book) {
  for (int i = 0; i < book.sheetCount(); ++i) {
    if (book.getSheetName(i) != std::wstring_view(L"More")) continue;
    libxl::Sheet* sheet = book.getSheet(i);
    if (sheet) return sheet->readNum(0, 0);
  }
  return {};
}

// What calls came to.
struct Outcome {
  std::vector<std::string> messages;
  std::optional<double> other_sheet;
  std::string save_message;
  std::set<std::string> changed_parts;  // new ones and lost ones too

  bool refused() const {
    return std::ranges::none_of(messages, [](const std::string& one) { return one == "ok"; });
  }
};

// Calls the operations in every round and saves what became of the book.
Outcome outcome_of(Scene& scene, std::span<const Operation> operations) {
  Outcome outcome;
  if (!scene.load()) return outcome;
  for (const Operation& operation : operations) {
    const bool is_of_sheet =
        operation.of("Sheet") || operation.of("AutoFilter") || operation.of("FilterColumn");
    if (!scene.objects.sheet && is_of_sheet) continue;
    for (const Round& round : kSensible) {
      EXPECT_NO_THROW(scene.call(operation, round));
      outcome.messages.push_back(scene.message());
    }
  }
  EXPECT_NO_THROW(outcome.other_sheet = read_other_sheet(scene.book()));
  const char* data = nullptr;
  unsigned size = 0;
  EXPECT_NO_THROW(scene.book().saveRaw(&data, &size));
  outcome.save_message = scene.message();
  if (!data) return outcome;
  const auto after = stored_parts({data, size});
  for (const auto& [name, text] : scene.parts()) {
    const auto found = after.find(name);
    if (found == after.end() || found->second != text) outcome.changed_parts.insert(name);
  }
  for (const auto& [name, text] : after)
    if (!scene.parts().contains(name)) outcome.changed_parts.insert(name);
  return outcome;
}

enum class Damage : std::uint8_t { kNotWellFormed, kOtherRoot, kCut, kMissing };

// The rich package with damage in one part.
std::string damaged(std::string_view part, Damage damage) {
  std::vector<engine::package::testing::RawEntry> entries;
  for (const auto& [name, text] : engine::xlsx::rich_package()) {
    entries.push_back(engine::package::testing::deflated(name, text));
    if (name != part) continue;
    auto& entry = entries.back();
    if (damage == Damage::kNotWellFormed) entry = deflated(name, "<broken");
    if (damage == Damage::kOtherRoot) entry = deflated(name, "<other/>");
    if (damage == Damage::kCut) std::fill(entry.packed.begin() + 9, entry.packed.end(), '\xFF');
    if (damage == Damage::kMissing) entries.pop_back();
  }
  return engine::package::testing::build_zip(entries);
}

constexpr const char* kDamagedParts[] = {
    "xl/workbook.xml",
    "xl/_rels/workbook.xml.rels",
    "xl/styles.xml",
    "xl/theme.xml",
    "xl/sharedStrings.xml",
    "xl/worksheets/sheet1.xml",
    "xl/worksheets/_rels/sheet1.xml.rels",
    "xl/comments1.xml",
    "xl/threaded1.xml",
    "xl/drawings/vmlDrawing1.vml",
    "xl/drawings/drawing1.xml",
    "xl/drawings/_rels/drawing1.xml.rels",
    "xl/charts/chart1.xml",
    "xl/tables/table1.xml",
};

// Operations with what they come to in a sound book.
struct Walk {
  std::span<const Operation> operations;
  Outcome sound;
};

std::vector<Walk> walks() {
  std::vector<Walk> all;
  Scene scene(rich_bytes());
  for (auto rest = every_operation(); !rest.empty();) {
    // Those of fonts and formats need no book each.
    const auto last = std::ranges::find_if(
        rest, [](const Operation& one) { return !one.of("Font") && !one.of("Format"); });
    const auto count = static_cast<std::size_t>(std::max(last - rest.begin(), std::ptrdiff_t{1}));
    Outcome outcome = outcome_of(scene, rest.first(count));
    if (!outcome.messages[0].ends_with("is not supported yet"))
      all.push_back({rest.first(count), std::move(outcome)});
    rest = rest.subspan(count);
  }
  return all;
}

// Walks over a book with damage in one part. `idle` is what saving it untouched comes to.
void walk(Scene& scene, const Walk& walk, const Outcome& idle, const std::string& place,
          bool part_is_lost) {
  SCOPED_TRACE(walk.operations[0].name);
  const Outcome outcome = outcome_of(scene, walk.operations);
  for (std::size_t i = 0; i < outcome.messages.size(); ++i) {
    EXPECT_THAT(outcome.messages[i],
                AnyOf("ok", walk.sound.messages[i], HasSubstr(place), HasSubstr("out of range")));
  }
  EXPECT_THAT(outcome.save_message, AnyOf("ok", walk.sound.save_message, HasSubstr(place)));
  if (outcome.refused()) {
    EXPECT_EQ(outcome.other_sheet, idle.other_sheet);
  } else if (idle.other_sheet && outcome.messages == walk.sound.messages) {
    EXPECT_EQ(outcome.other_sheet, walk.sound.other_sheet);
  }
  // What a part forbids, as a table that would lose its header does, is done when that is lost.
  bool does_more = false;
  for (std::size_t i = 0; i < outcome.messages.size(); ++i)
    does_more |= outcome.messages[i] == "ok" && walk.sound.messages[i] != "ok";
  for (const std::string& name : outcome.changed_parts) {
    if (idle.changed_parts.contains(name)) continue;
    EXPECT_FALSE(outcome.refused()) << name;
    if (does_more) continue;
    // What takes the place of a lost part needs relationships and types.
    const bool replaces =
        part_is_lost &&
        (name == "[Content_Types].xml" || name.ends_with(".rels") || !scene.parts().contains(name));
    EXPECT_TRUE(replaces || walk.sound.changed_parts.contains(name)) << name;
  }
}

TEST(EveryOperation, OfADamagedBookTellsWhereTheDamageIs) {
  const std::vector<Walk> all = walks();
  for (const char* part : kDamagedParts) {
    for (const Damage damage :
         {Damage::kNotWellFormed, Damage::kOtherRoot, Damage::kCut, Damage::kMissing}) {
      SCOPED_TRACE(part + std::string(", damage ") + std::to_string(static_cast<int>(damage)));
      // A part that is not there, or is something else, shows in those that lead to it.
      const bool lost = damage == Damage::kOtherRoot || damage == Damage::kMissing;
      const std::string place = std::string("is damaged: ") + (lost ? "xl/" : part);
      Scene scene(damaged(part, damage));
      if (!scene.load()) {
        EXPECT_THAT(scene.message(), AnyOf(HasSubstr(place), HasSubstr("is not an .xlsx")));
        EXPECT_TRUE(scene.book().addSheet(L"New"));
        continue;
      }
      const Outcome idle = outcome_of(scene, {});
      EXPECT_EQ(idle.save_message, "ok");
      for (const std::string& name : idle.changed_parts)
        EXPECT_TRUE(damage == Damage::kMissing && name.ends_with(".rels")) << name;
      for (const Walk& one : all) walk(scene, one, idle, place, lost);
    }
  }
}

TEST(EveryOperation, OfASoundBookLeavesWhatItDoesNotChange) {
  Scene scene(rich_bytes());
  EXPECT_THAT(outcome_of(scene, {}).changed_parts, IsEmpty());
}

}  // namespace
