// Filters in files: what is read of them, what stays when they change, tables and their order.
#include <gmock/gmock.h>

#include "engine/workbook/filter_operations.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

constexpr const char* kSheet = "xl/worksheets/sheet1.xml";

constexpr const char* kFilter =
    R"(<autoFilter ref="B2:H9" uid="u"><filterColumn colId="0" own="1"><filters blank="1" )"
    R"(calendarType="gregorian"><filter val="Tea"/><filter val="a_x000D_b"/><dateGroupItem )"
    R"(year="2026" month="3" dateTimeGrouping="month"/></filters></filterColumn>)"
    R"(<filterColumn colId="1"><top10 top="0" percent="1" val="20" filterVal="7"/></filterColumn>)"
    R"(<filterColumn colId="2"><customFilters and="1"><customFilter operator="notEqual" val=" "/>)"
    R"(<customFilter operator="lessThanOrEqual" val="5"/></customFilters></filterColumn>)"
    R"(<filterColumn colId="3"><dynamicFilter type="today"/></filterColumn>)"
    R"(<filterColumn colId="4"><colorFilter dxfId="0"/></filterColumn>)"
    R"(<filterColumn colId="5" hiddenButton="1"/><filterColumn colId="6"><extLst><ext uri="u"/>)"
    R"(</extLst></filterColumn><sortState ref="B3:H9" caseSensitive="1"><sortCondition ref="C3:C9" )"
    R"(descending="1" dxfId="0"/><sortCondition ref="D3:D9"/></sortState><extLst/></autoFilter>)";

std::unique_ptr<Book> filtered_book() {
  auto book = load(
      book_of(worksheet("<row r=\"3\" hidden=\"1\"/>", "<sheetPr filterMode=\"1\"/>", kFilter)));
  book->read();
  return book;
}

// What the worksheet says behind its rows.
std::string tail_of(const Book& book) {
  const std::string text = unzip(book.save()).at(kSheet);
  return text.substr(text.find("</sheetData>") + 12);
}

std::string tail(std::string filter) { return filter + "</worksheet>"; }

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(Filters, AreReadInEveryKind) {
  const auto book = filtered_book();
  const SheetContents& sheet = book->sheet().contents();
  EXPECT_TRUE(sheet.filtered);
  const AutoFilter& filter = sheet.filter;
  EXPECT_EQ(formula::print_range(*filter.range), "B2:H9");
  ASSERT_EQ(filter.columns.size(), 7U);
  const FilterKind kinds[] = {FilterKind::kValues,   FilterKind::kTop10, FilterKind::kCustom,
                              FilterKind::kDynamic,  FilterKind::kColor, FilterKind::kNone,
                              FilterKind::kExtension};
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(filter.columns[i].column, static_cast<int>(i) + 1);
    EXPECT_EQ(filter.columns[i].criterion.kind, kinds[i]) << i;
    EXPECT_EQ(filter.columns[i].shows_button, i != 5) << i;
  }
  const FilterCriterion& values = filter.columns[0].criterion;
  EXPECT_EQ(values.texts.all(), (std::vector<std::string>{"Tea", "a\rb"}));
  EXPECT_TRUE(values.blanks);
  EXPECT_EQ(values.dates, (std::vector<DateGroup>{{{2026, 3}, DatePart::kMonth}}));
  const FilterCriterion& top = filter.columns[1].criterion;
  EXPECT_EQ(top.count, 20);
  EXPECT_FALSE(top.largest);
  EXPECT_TRUE(top.percent);
  EXPECT_EQ(top.last_shown, 7);
  const FilterCriterion& custom = filter.columns[2].criterion;
  EXPECT_TRUE(custom.both);
  EXPECT_EQ(custom.conditions, (std::vector<FilterCondition>{{FilterOperator::kNotEqual, ""},
                                                             {FilterOperator::kLessOrEqual, "5"}}));
  EXPECT_EQ(formula::print_range(filter.sort->keys[0].cells), "C3:C9");
  EXPECT_TRUE(filter.sort->keys[0].descending);
}

// Each change leaves all else in its place.
TEST(Filters, KeepWhatTheModelDoesNotSay) {
  const struct {
    void (*change)(AutoFilter&);
    std::string_view from;
    std::string_view to;
  } cases[] = {
      {[](AutoFilter& f) { f.columns[0].criterion.texts.add("Fig & co"); },
       R"(<filter val="a_x000D_b"/>)", R"(<filter val="a_x000D_b"/><filter val="Fig &amp; co"/>)"},
      {[](AutoFilter& f) { f.columns[0].criterion.blanks = false; }, R"( blank="1")", ""},
      {[](AutoFilter& f) { f.columns[1].criterion.percent = false; }, R"( percent="1")", ""},
      {[](AutoFilter& f) { f.columns[2].criterion.conditions.pop_back(); },
       R"(<customFilter operator="lessThanOrEqual" val="5"/>)", ""},
      {[](AutoFilter& f) { set_criterion(f, 4, f.columns[1].criterion); },
       R"(<dynamicFilter type="today"/>)",
       R"(<top10 top="0" percent="1" val="20" filterVal="7"/>)"},
      {[](AutoFilter& f) { set_criterion(f, 5, {}); },
       R"(<filterColumn colId="4"><colorFilter dxfId="0"/></filterColumn>)", ""},
      {[](AutoFilter& f) { f.sort->keys[1].descending = true; }, R"(ref="D3:D9")",
       R"(ref="D3:D9" descending="1")"},
      {[](AutoFilter& f) { f.sort->keys.erase(f.sort->keys.begin()); },
       R"(<sortCondition ref="C3:C9" descending="1" dxfId="0"/>)", ""},
      {[](AutoFilter& f) { f.sort.reset(); },
       R"(<sortState ref="B3:H9" caseSensitive="1"><sortCondition ref="C3:C9" descending="1" )"
       R"(dxfId="0"/><sortCondition ref="D3:D9"/></sortState>)",
       ""},
      {[](AutoFilter& f) {
         f.columns.pop_back();
         f.columns.pop_back();
       },
       R"(<filterColumn colId="5" hiddenButton="1"/><filterColumn colId="6"><extLst><ext uri="u"/>)"
       R"(</extLst></filterColumn>)",
       ""},
  };
  for (const auto& [change, from, to] : cases) {
    SCOPED_TRACE(from);
    const auto book = filtered_book();
    change(book->sheet().change().filter);
    EXPECT_EQ(tail_of(*book), tail(replaced(kFilter, from, to)));
  }
}

TEST(Filters, AreLeftAloneByOtherChanges) {
  const auto book = filtered_book();
  book->sheet().change().put_blank(0, 0, {});
  EXPECT_EQ(tail_of(*book), tail(kFilter));
}

TEST(Filters, AreMadeInTheFormatsOrder) {
  const auto book = load(book_of(worksheet("", "", "<mergeCells/>")));
  book->read();
  set_filter_range(book->workbook, book->sheet(), {0, 4, 0, 2});
  AutoFilter& filter = book->sheet().change().filter;
  FilterCriterion criterion;
  criterion.kind = FilterKind::kValues;
  criterion.texts.add("x");
  filter.sort = SortState{{1, 4, 0, 2}, {{{1, 4, 1, 1}, true}}};
  set_criterion(filter, 2, criterion);
  set_criterion(filter, 0, criterion);
  const std::string columns[] = {
      R"(<filterColumn colId="0"><filters><filter val="x"/></filters></filterColumn>)",
      R"(<filterColumn colId="2"><filters><filter val="x"/></filters></filterColumn>)"};
  const std::string sort =
      R"(<sortState ref="A2:C5"><sortCondition descending="1" ref="B2:B5"/></sortState>)";
  EXPECT_EQ(tail_of(*book), tail("<autoFilter ref=\"A1:C5\">" + columns[0] + columns[1] + sort +
                                 "</autoFilter><mergeCells/>"));
  EXPECT_THAT(unzip(book->save()).at("xl/workbook.xml"),
              HasSubstr(R"(<definedName name="_xlnm._FilterDatabase" localSheetId="0" hidden="1">)"
                        R"(One!$A$1:$C$5</definedName>)"));
  remove_filter(book->workbook, book->sheet());
  EXPECT_EQ(tail_of(*book), tail("<mergeCells/>"));
  EXPECT_TRUE(book->workbook.names.empty());
}

// What no range can be made of is none of ours until a range is set.
TEST(Filters, OfDamagedFilesAreNone) {
  constexpr const char* kDamaged =
      R"(<autoFilter ref="?"><filterColumn colId="0"><filters/></filterColumn></autoFilter>)";
  const auto book = load(book_of(worksheet("", "", kDamaged)));
  book->read().change();
  EXPECT_FALSE(book->sheet().contents().filter.range);
  EXPECT_EQ(tail_of(*book), tail(kDamaged));
  set_filter_range(book->workbook, book->sheet(), {0, 4, 0, 2});
  EXPECT_EQ(tail_of(*book), tail(R"(<autoFilter ref="A1:C5"/>)"));
}

TEST(Filters, OfOddColumnsCountOnce) {
  const auto book = load(book_of(worksheet(
      "", "",
      R"(<autoFilter ref="A1:B5"><filterColumn colId="1"/><filterColumn colId="1"><top10 val="x"/>)"
      R"(</filterColumn><filterColumn colId="2"/><filterColumn colId="-1"/><filterColumn/>)"
      R"(</autoFilter>)")));
  const AutoFilter& filter = book->read().contents().filter;
  ASSERT_EQ(filter.columns.size(), 2U);
  EXPECT_EQ(filter.columns[1].criterion.kind, FilterKind::kNone);
}

}  // namespace
}  // namespace engine::xlsx
