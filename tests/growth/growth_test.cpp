// Twice the input is about twice the work: no operation is quadratic in what it is given.
//
// A case does something whose size is `n`, building its input included. To add one, add a row; the
// size has to be so large that a quadratic part would outweigh what is linear.
#include <gtest/gtest.h>

#include <string>

#include "tests/api/stage.h"
#include "tests/growth/work.h"
#include "tests/support/pictures.h"
#include "tests/xlsx/packages.h"

namespace {

using engine::xlsx::PartTexts;

// A book of one sheet with these rows.
Stage loaded(const std::string& rows) {
  const std::string bytes = engine::xlsx::zip(engine::xlsx::book_of(engine::xlsx::worksheet(rows)));
  Stage stage;
  EXPECT_TRUE(stage.book->loadRaw(bytes.data(), static_cast<unsigned>(bytes.size())));
  stage.sheet = stage.book->getSheet(0);
  EXPECT_TRUE(stage.sheet) << stage.message();
  return stage;
}

std::string cell(int row, const std::string& attributes, const std::string& content) {
  const std::string number = std::to_string(row + 1);
  return "<row r=\"" + number + "\"><c r=\"A" + number + "\" " + attributes + ">" + content +
         "</c></row>";
}

void rows_upwards(int n) {
  Stage stage;
  for (int row = n; row-- > 0;) stage.sheet->writeNum(row, 0, row);
}

void cells_in_any_order(int n) {
  Stage stage;
  constexpr long long kStep = 7919;  // a prime that no n here is a multiple of
  for (long long i = 0; i < n; ++i) {
    const auto place = static_cast<int>(i * kStep % n);
    stage.sheet->writeNum(place / 5, place % 5, 1);
  }
}

// What a row is given for a start must not follow the widest one.
void narrow_rows_below_a_wide_one(int n) {
  Stage stage;
  for (int column = 0; column < n; ++column) stage.sheet->writeNum(0, column, 1);
  for (int row = n; row > 0; --row) stage.sheet->writeNum(row, 0, 1);
}

void used_range_of_each_row(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row) {
    stage.sheet->writeNum(row, 0, 1);
    EXPECT_EQ(stage.sheet->lastRow(), row + 1);
    EXPECT_EQ(stage.sheet->lastCol(), 1);
  }
}

void formulas_and_values_in_turn(int n) {
  Stage stage;
  for (int round = 0; round < 2; ++round) {
    for (int row = 0; row < n; ++row) stage.sheet->writeFormulaNum(row, 0, L"B1+1", 2);
    for (int row = 0; row < n; ++row) stage.sheet->writeNum(row, 0, 1);
  }
}

void different_texts(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row)
    stage.sheet->writeStr(row, 0, (L"text " + std::to_wstring(row)).c_str());
  EXPECT_TRUE(stage.reload());
  for (int row = 0; row < n; ++row)
    stage.sheet->writeStr(row, 1, (L"text " + std::to_wstring(row)).c_str());
}

void different_formats(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row) {
    libxl::Font* font = stage.book->addFont();
    font->setSize(1 + row);
    libxl::Format* format = stage.book->addFormat();
    format->setFont(font);
    stage.sheet->writeNum(row, 0, 1, format);
  }
  EXPECT_TRUE(stage.reload());
}

void comments_saved_and_loaded(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row) stage.sheet->writeComment(row, 0, L"note", L"author", 129, 75);
  EXPECT_TRUE(stage.reload());
  EXPECT_STREQ(stage.sheet->readComment(n - 1, 0), L"note");
}

void formulas_loaded(int n) {
  std::string rows;
  for (int row = 0; row < n; ++row) rows += cell(row, "", "<f>B1+1</f><v>2</v>");
  loaded(rows);
}

void rows_in_descending_order(int n) {
  std::string rows;
  for (int row = n; row-- > 0;) rows += cell(row, "", "<v>2</v>");
  EXPECT_EQ(loaded(rows).sheet->lastRow(), n);
}

void different_errors(int n) {
  std::string rows;
  for (int row = 0; row < n; ++row)
    rows += cell(row, "t=\"e\"", "<v>#E" + std::to_string(row) + "!</v>");
  EXPECT_TRUE(loaded(rows).reload());
}

// One array a row, each reaching down to the end of the sheet beside all the others.
void arrays_over_one_another(int n) {
  std::string rows;
  for (int row = 0; row < n; ++row)
    rows += cell(row, "",
                 "<f t=\"array\" ref=\"B" + std::to_string(row + 1) + ":B1048576\">1</f><v>1</v>");
  const Stage stage = loaded(rows);
  int refused = 0;
  for (int row = 0; row < n; ++row) {
    EXPECT_TRUE(stage.sheet->isFormula(row, 0));
    EXPECT_TRUE(stage.sheet->writeNum(row, 2, 1));
    if (!stage.sheet->writeNum(row, 1, 1)) ++refused;
  }
  EXPECT_EQ(refused, n);
}

void sheets_added(int n) {
  Stage stage;
  for (int number = 0; number < n; ++number)
    EXPECT_TRUE(stage.book->addSheet((L"Sheet " + std::to_wstring(number)).c_str()));
}

// The copies' tables must go with them: each deletion looks for formulas in all that there are.
void sheets_copied_and_deleted(int n) {
  PartTexts parts = engine::xlsx::book_of(
      engine::xlsx::worksheet("", "", R"(<tableParts><tablePart r:id="rId1"/></tableParts>)"));
  parts["xl/worksheets/_rels/sheet1.xml.rels"] =
      engine::xlsx::relations({{"table", "../tables/table1.xml"}});
  std::string& table = parts["xl/tables/table1.xml"];
  table = "<table xmlns=\"" + std::string(engine::xlsx::kMainNamespace) +
          "\" id=\"1\" name=\"T\" displayName=\"T\" ref=\"A1:A2\"><tableColumns>";
  for (int column = 0; column < 50; ++column) table += "<tableColumn/>";
  table += "</tableColumns></table>";
  parts["[Content_Types].xml"] = engine::xlsx::types(
      {{"xl/workbook.xml", "vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"},
       {"xl/tables/table1.xml", "vnd.openxmlformats-officedocument.spreadsheetml.table+xml"}});
  const std::string bytes = engine::xlsx::zip(parts);
  const Stage stage;
  EXPECT_TRUE(stage.book->loadRaw(bytes.data(), static_cast<unsigned>(bytes.size())));
  for (int number = 0; number < n; ++number) {
    EXPECT_TRUE(stage.book->addSheet(L"Copy", stage.book->getSheet(0))) << stage.message();
    EXPECT_TRUE(stage.book->delSheet(1)) << stage.message();
  }
}

// Found by their cells, tested for overlaps and removed by their number, in turn with questions.
void merges(int n) {
  Stage stage;
  for (int i = 0; i < n; ++i) {
    EXPECT_TRUE(stage.sheet->setMerge(i / 5, i / 5, i % 5 * 3, i % 5 * 3 + 1 + i % 2));
    EXPECT_FALSE(stage.sheet->setMerge(i / 10, i / 10, 0, 16383));
  }
  EXPECT_TRUE(stage.reload());
  for (int i = 0; i < n; ++i) {
    int row = -1;
    EXPECT_TRUE(stage.sheet->getMerge(i / 5, i % 5 * 3 + 1, &row, nullptr, nullptr, nullptr));
    EXPECT_EQ(row, i / 5);
  }
  for (int i = n; i > 0; i -= 2) {
    EXPECT_TRUE(stage.sheet->delMergeByIndex(i / 2));
    EXPECT_TRUE(stage.sheet->merge(i / 3, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(stage.sheet->delMergeByIndex(0));
  }
  EXPECT_EQ(stage.sheet->mergeSize(), 0);
}

void overlapping_merges_of_a_file(int n) {
  std::string list = "<mergeCells>";
  for (int i = 1; i <= n; ++i) list += "<mergeCell ref=\"A" + std::to_string(i) + ":Z1048576\"/>";
  const std::string bytes = engine::xlsx::zip(
      engine::xlsx::book_of(engine::xlsx::worksheet({}, {}, list + "</mergeCells>")));
  Stage stage;
  EXPECT_TRUE(stage.book->loadRaw(bytes.data(), static_cast<unsigned>(bytes.size())));
  stage.sheet = stage.book->getSheet(0);
  EXPECT_EQ(stage.sheet->mergeSize(), n);
  for (int i = 0; i < n; ++i) {
    EXPECT_TRUE(stage.sheet->getMerge(i, 1, nullptr, nullptr, nullptr, nullptr));
    EXPECT_FALSE(stage.sheet->getMerge(i, 26, nullptr, nullptr, nullptr, nullptr));
  }
}

void columns_from_the_last_one(int n) {
  Stage stage;
  for (int column = n; column-- > 0;) {
    EXPECT_TRUE(stage.sheet->setCol(column, column, 1 + column % 9));
    EXPECT_TRUE(stage.sheet->groupCols(column, column, column % 2 == 0));
  }
}

void rows_of_their_own_size(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row) EXPECT_TRUE(stage.sheet->setRow(row, 1 + row % 9));
  EXPECT_TRUE(stage.sheet->groupRows(0, n - 1));
}

void cells_cleared_one_by_one(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row) {
    stage.sheet->writeFormula(row, 0, L"B1+1");
    stage.sheet->writeComment(row, 0, L"note");
  }
  for (int row = n; row-- > 0;) stage.sheet->clear(row, row, 0, 0);
  EXPECT_EQ(stage.sheet->lastRow(), 0);
}

// The limit counts what is set here, not what a file brings.
void arrays_cleared_one_by_one(int n) {
  std::string rows;
  for (int row = 0; row < n; ++row) {
    const std::string number = std::to_string(row + 1);
    rows += cell(row, "", "<f t=\"array\" ref=\"A" + number + ":B" + number + "\">1</f><v>1</v>");
  }
  const Stage stage = loaded(rows);
  for (int row = 0; row < n; ++row) {
    stage.sheet->clear(row, row, 0, 1);
    EXPECT_TRUE(stage.sheet->writeNum(row, 1, 1));
  }
}

void page_breaks_loaded_and_removed(int n) {
  std::string breaks;
  for (int row = 1; row <= n; ++row)
    breaks += "<brk id=\"" + std::to_string(row) + "\" man=\"1\"/>";
  const std::string bytes = engine::xlsx::zip(engine::xlsx::book_of(
      engine::xlsx::worksheet("", "", "<rowBreaks>" + breaks + "</rowBreaks>")));
  Stage stage;
  EXPECT_TRUE(stage.book->loadRaw(bytes.data(), static_cast<unsigned>(bytes.size())));
  stage.sheet = stage.book->getSheet(0);
  for (int row = n; row > 0; row -= 2) EXPECT_TRUE(stage.sheet->setHorPageBreak(row, false));
  EXPECT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->getHorPageBreakSize(), n / 2);
}

void rows_inserted_among_formulas(int n) {
  Stage stage;
  for (int row = 0; row < n; ++row)
    stage.sheet->writeFormulaNum(row, 0, (L"SUM(B1:B" + std::to_wstring(row + 1) + L")").c_str(),
                                 1);
  EXPECT_TRUE(stage.sheet->insertRow(n / 2, n / 2 + 1));
  EXPECT_TRUE(stage.sheet->insertCol(0, 1));
  EXPECT_TRUE(stage.sheet->removeRow(n / 2, n / 2 + 1));
  EXPECT_EQ(stage.sheet->lastRow(), n);
}

// Which cells go on to share depends on where each reference lies.
void rows_removed_under_shared_formulas(int n) {
  std::string rows;
  for (int row = 0; row < n; ++row) {
    const std::string text = row == 0 ? "B1+SUM(B1:B$9)" : "";
    rows += cell(row, "", "<f t=\"shared\" si=\"0\">" + text + "</f><v>2</v>");
  }
  const Stage stage = loaded(rows);
  EXPECT_TRUE(stage.sheet->removeRow(n / 2, n / 2 + n / 4));
}

void links_added_saved_and_removed(int n) {
  Stage stage;
  for (int round = 0; round < 2; ++round)
    for (int row = 0; row < n; ++row) stage.sheet->addHyperlink(L"http://a/", row, row, 0, 0);
  EXPECT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->hyperlinkSize(), n);
  while (stage.sheet->hyperlinkSize() > 0) EXPECT_TRUE(stage.sheet->delHyperlink(0));
  EXPECT_TRUE(stage.reload());
}

void names_added_saved_and_removed(int n) {
  Stage stage;
  const auto name = [](int number) { return L"name_" + std::to_wstring(number); };
  for (int round = 0; round < 2; ++round) {
    for (int number = 0; number < n; ++number) {
      EXPECT_TRUE(stage.sheet->setNamedRange(name(number).c_str(), number, number, 0, 0));
      EXPECT_EQ(stage.sheet->namedRangeSize(), round == 0 ? number + 1 : n);
    }
  }
  EXPECT_TRUE(stage.reload());
  for (int number = 0; number < n; ++number) {
    const wchar_t* first = stage.sheet->namedRange(0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(first, name(number));
    EXPECT_TRUE(stage.sheet->delNamedRange(name(number).c_str()));
  }
}

void values_of_a_filter(int n) {
  Stage stage;
  libxl::AutoFilter* filter = stage.sheet->autoFilter();
  filter->setRef(0, n, 0, 0);
  for (int i = 0; i < n; ++i) {
    stage.sheet->writeStr(n - i, 0, (L"text " + std::to_wstring(i * 2)).c_str());
    filter->column(0)->addFilter((L"Text " + std::to_wstring(i)).c_str());
    EXPECT_TRUE(filter->column(0)->filter(i));
  }
  stage.sheet->applyFilter();
  EXPECT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->autoFilter()->column(0)->filterSize(), n);
  EXPECT_TRUE(stage.sheet->rowHidden(1));
  EXPECT_FALSE(stage.sheet->rowHidden(n));
  stage.sheet->removeFilter();
}

void columns_of_a_filter(int n) {
  Stage stage;
  libxl::AutoFilter* filter = stage.sheet->autoFilter();
  filter->setRef(0, 2, 0, n - 1);
  for (int column = 0; column < n; ++column) filter->column(column)->setTop10(3);
  EXPECT_TRUE(stage.reload());
  filter = stage.sheet->autoFilter();
  for (int column = 0; column < n; ++column) filter->columnByIndex(column)->addFilter(L"x");
  stage.sheet->applyFilter();
  EXPECT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->autoFilter()->columnByIndex(n - 1)->filterType(), libxl::FilterValues);
}

// Each takes a cell from one that had the whole column, or from the one before it there.
void validations_over_one_another(int n) {
  Stage stage;
  const auto add = [&](int first, int last) {
    stage.sheet->addDataValidation(libxl::ValidationCustom, libxl::ValidationBetween, first, last,
                                   0, 0, L"B1>0", L"", true);
  };
  add(0, 1048575);
  for (const int step : {2, 1})
    for (int row = 1; row < n; ++row) add(step * row, step * row);
  stage.sheet->insertRow(1, 1);
  EXPECT_TRUE(stage.reload());
  for (int row = 0; row < n; ++row)
    stage.sheet->addIgnoredError(row, 0, row, 0, libxl::IgnoreEvalError);
  stage.sheet->removeDataValidations();
  EXPECT_TRUE(stage.reload());
}

// Each is asked for where it lies, between rows that the sheet has heights of.
void pictures_placed_and_loaded(int n) {
  Stage stage;
  for (int i = 0; i < n; ++i) {
    stage.sheet->setRow(i, 20);
    const std::string bytes = pictures::png(100, 100, std::to_string(i));
    const int id = stage.book->addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
    stage.sheet->setPicture(i, 1, id, 1, 0, 0,
                            i % 2 == 0 ? libxl::PositionMoveAndSize : libxl::PositionMoveOnly);
  }
  EXPECT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->pictureSize(), n);
  for (int i = 0; i < n; ++i) EXPECT_EQ(stage.sheet->getPicture(i), i);
  EXPECT_TRUE(stage.sheet->insertRow(0, 0));
  EXPECT_TRUE(stage.reload());
}

// Where they lie is told by the heights of all rows above, some of which change in between.
void free_pictures_far_down(int n) {
  Stage stage;
  const std::string bytes = pictures::png(10, 10);
  const int id = stage.book->addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
  for (int i = 0; i < n; ++i) {
    stage.sheet->setRow(i, 20 + i % 3);
    stage.sheet->setPicture(i, 1, id, 1, 0, 0, libxl::PositionFree);
  }
  for (int i = 0; i < n; ++i) {
    int row = -1;
    stage.sheet->getPicture(i, &row);
    EXPECT_EQ(row, i);
  }
}

struct Case {
  const char* name;
  void (*run)(int n);
  int n;
};
constexpr Case kCases[] = {
    {"rows upwards", rows_upwards, 6000},
    {"cells in any order", cells_in_any_order, 12000},
    {"narrow rows below a wide one", narrow_rows_below_a_wide_one, 6000},
    {"used range of each row", used_range_of_each_row, 3000},
    {"formulas and values in turn", formulas_and_values_in_turn, 12000},
    {"different texts", different_texts, 6000},
    {"different formats", different_formats, 1500},
    {"comments saved and loaded", comments_saved_and_loaded, 3000},
    {"formulas loaded", formulas_loaded, 12000},
    {"rows in descending order", rows_in_descending_order, 12000},
    {"different errors", different_errors, 6000},
    {"merges", merges, 6000},
    {"overlapping merges of a file", overlapping_merges_of_a_file, 6000},
    {"columns from the last one", columns_from_the_last_one, 6000},
    {"rows of their own size", rows_of_their_own_size, 12000},
    {"cells cleared one by one", cells_cleared_one_by_one, 6000},
    {"page breaks loaded and removed", page_breaks_loaded_and_removed, 3000},
    {"arrays cleared one by one", arrays_cleared_one_by_one, 3000},
    {"arrays over one another", arrays_over_one_another, 3000},
    {"rows inserted among formulas", rows_inserted_among_formulas, 6000},
    {"rows removed under shared formulas", rows_removed_under_shared_formulas, 6000},
    {"sheets added", sheets_added, 1500},
    {"links added, saved and removed", links_added_saved_and_removed, 3000},
    {"names added, saved and removed", names_added_saved_and_removed, 3000},
    {"values of a filter", values_of_a_filter, 6000},
    {"columns of a filter", columns_of_a_filter, 3000},
    {"validations over one another", validations_over_one_another, 3000},
    {"sheets copied and deleted", sheets_copied_and_deleted, 100},
    {"pictures placed and loaded", pictures_placed_and_loaded, 600},
    {"free pictures far down", free_pictures_far_down, 3000},
};

std::uint64_t work_of(const Case& one, int n) {
  const std::uint64_t before = work_done();
  one.run(n);
  return work_done() - before;
}

TEST(Growth, TwiceTheInputIsAboutTwiceTheWork) {
  for (const Case& one : kCases) {
    SCOPED_TRACE(one.name);
    const auto once = static_cast<double>(work_of(one, one.n));
    const auto twice = static_cast<double>(work_of(one, one.n * 2));
    EXPECT_LT(twice / once, 2.5) << once << " steps, then " << twice;
  }
}

}  // namespace
