// What happens to the references of a formula when cells are copied, rows move or sheets change.
#include <gtest/gtest.h>

#include "engine/formula/adjust.h"
#include "engine/formula/formula.h"
#include "engine/formula/formula_text.h"
#include "tests/formula/grid.h"

namespace engine::formula {
namespace {

struct Change {
  const char* before;
  const char* after;  // null when nothing changes
};

template <typename Function>
void check(std::span<const Change> cases, Function change) {
  for (const auto& [before, after] : cases) {
    SCOPED_TRACE(before);
    const std::optional<std::string> changed = change(before);
    EXPECT_EQ(changed.has_value(), after != nullptr);
    EXPECT_EQ(changed.value_or(before), after == nullptr ? before : after);
  }
}

TEST(Shift, MovesRelativeParts) {
  constexpr Change kCases[] = {
      {"B3", "D2"},
      {"$B3+B$3+$B$3", "$B2+D$3+$B$3"},
      {"SUM( A2:$B$9 , 'a b'!C4 )", "SUM( C1:$B$9 , 'a b'!E3 )"},
      {"A:B+3:$4", "C:D+2:$4"},
      {"A1", "#REF!"},
      {"Sheet1!A1:A2*2", "#REF!*2"},
      {"#REF!A1", "#REF!"},
      {"XFC5", "#REF!"},
      {"[1]S!A2", "[1]S!C1"},
      {"A:A", "C:C"},
      {"1:9", "#REF!"},
      {"$A$1+Rate+Table1[Net]+\"A5\"", nullptr},
      {"SUM((-4,3),(A2,2))", "SUM((-4,3),(C1,2))"},
      {"'C:\\a\\[b.xls]S'!A2", "'C:\\a\\[b.xls]S'!C1"},
      {"A9 (is no formula", nullptr},
  };
  check(kCases, [](const char* text) { return shift_text(text, -1, 2, kGrid); });
}

TEST(Adjust, InsertsRows) {
  constexpr Change kCases[] = {
      {"A4", nullptr},
      {"A5", "A8"},
      {"$A$5", "$A$8"},
      {"A1:A9", "A1:A12"},
      {"A9:A1", "A12:A1"},
      {"A1:A4", nullptr},
      {"5:7", "8:10"},
      {"A:C", nullptr},
      {"A1:B1048576", nullptr},
      {"A9:B1048576", "A12:B1048576"},
      {"A1048574", "#REF!"},
      {"Data!A5+'DATA'!A6+Other!A7", "Data!A8+'DATA'!A9+Other!A7"},
      {"Data!A1048576", "#REF!"},
      {"Data:Other!A5+[1]Data!A5+[b.xls]Data!A5+#REF!A5", nullptr},
      {"Table1[Net]+INDIRECT(\"A5\")", nullptr},
      {"A9#+@A7:A8", "A12#+@A10:A11"},
  };
  const Move insert{Axis::kRows, Move::Kind::kInsert, 4, 3};
  check(kCases, [&](const char* text) { return adjust_text(text, insert, "Data", true, kGrid); });
}

TEST(Adjust, RemovesColumnsFromAnotherSheet) {
  constexpr Change kCases[] = {
      {"C1", nullptr},
      {"Data!B1", nullptr},
      {"Data!C1", "#REF!"},
      {"Data!E1", "Data!C1"},
      {"Data!$A:$D", "Data!$A:$B"},
      {"Data!C:D", "#REF!"},
      {"Data!3:4", nullptr},
      {"SUM(data!D1:F9,C1)", "SUM(data!C1:D9,C1)"},
      {"Data:Data2!C1", nullptr},
  };
  const Move remove{Axis::kColumns, Move::Kind::kRemove, 2, 2};
  check(kCases, [&](const char* text) { return adjust_text(text, remove, "Data", false, kGrid); });
}

TEST(Adjust, KeepsToTheGridOfXls) {
  const Move insert{Axis::kRows, Move::Kind::kInsert, 0, 1};
  EXPECT_EQ(adjust_text("A65536", insert, "S", true, Grid{65536, 256}), "#REF!");
  EXPECT_EQ(adjust_text("A1:A65536", insert, "S", true, Grid{65536, 256}), "A2:A65536");
}

TEST(Sheets, Rename) {
  constexpr Change kCases[] = {
      {"Old!A1", "'New one'!A1"},
      {"'old'!A1+OLD!Rate", "'New one'!A1+'New one'!Rate"},
      {"SUM(Old:Last!A1)", "SUM('New one:Last'!A1)"},
      {"SUM('First one:Old'!A1)", "SUM('First one:New one'!A1)"},
      {"Old!#REF!", "'New one'!#REF!"},
      {"Old!F(Old!A1)", "'New one'!F('New one'!A1)"},
      {"_xlfn.ANCHORARRAY(Old!A1)+_xlfn.LET(_xlpm.x,Old!B1,_xlpm.x)",
       "_xlfn.ANCHORARRAY('New one'!A1)+_xlfn.LET(_xlpm.x,'New one'!B1,_xlpm.x)"},
      {"Older!A1+[1]Old!A1+'/[b.xls]Old'!A1+\"Old!A1\"+Old", nullptr},
  };
  check(kCases, [](const char* text) { return rename_sheet_text(text, "Old", "New one", kGrid); });
  EXPECT_EQ(rename_sheet_text("'It''s'!A1", "it's", "Plain", kGrid), "Plain!A1");
}

TEST(Sheets, Retarget) {
  constexpr Change kCases[] = {
      {"Old!A1+Other!A1", "'Old (2)'!A1+Other!A1"},
      {"Old:Other!A1", nullptr},
      {"A1", nullptr},
  };
  check(kCases,
        [](const char* text) { return retarget_sheet_text(text, "Old", "Old (2)", kGrid); });
}

TEST(Sheets, Delete) {
  constexpr std::string_view kSheets[] = {"A", "B", "C 1", "D"};
  const struct {
    std::size_t index;
    const char* before;
    const char* after;
  } cases[] = {
      {1, "B!A1+b!Rate", "#REF!A1+#REF!Rate"},
      {1, "B!#REF!", "#REF!"},
      {1, "A!A1+Bx!A1", nullptr},
      {1, "SUM(A:D!A1)", nullptr},
      {0, "SUM(A:'D'!A1)", nullptr},
      {0, "SUM(A:D!A1)", "SUM(B:D!A1)"},
      {3, "SUM(B:D!A1)", "SUM('B:C 1'!A1)"},
      {3, "SUM(D:A!A1)", "SUM('C 1:A'!A1)"},
      {0, "SUM(A:B!A1)", "SUM(B!A1)"},
      {1, "SUM(B:B!A1)", "SUM(#REF!A1)"},
      {1, "SUM(B:Gone!A1)", "SUM(#REF!A1)"},
  };
  for (const auto& [index, before, after] : cases) {
    SCOPED_TRACE(before);
    const auto changed = delete_sheet_text(before, kSheets, index, kGrid);
    EXPECT_EQ(changed.has_value(), after != nullptr);
    EXPECT_EQ(changed.value_or(before), after == nullptr ? before : after);
  }
}

TEST(Tables, RenamedOrDeleted) {
  const std::vector<TableChange> changes = {{"Sales", "Sales_1"}, {"Größe", {}}};
  constexpr Change kCases[] = {
      {"SUM(Sales[Net])", "SUM(Sales_1[Net])"},
      {"sales[[#This Row],[Net]]*2", "Sales_1[[#This Row],[Net]]*2"},
      {"ROWS(SALES)+Sales[]", "ROWS(Sales_1)+Sales_1[]"},
      {"SUM(GRÖSSE[x])", nullptr},  // folding case keeps the number of letters
      {"SUM(größe[[#All],[x]:[y]])+GRößE", "SUM(#REF!)+#REF!"},
      {"[Net]+[@Net]+Sales2[Net]+[1]!Sales[Net]", nullptr},
      {"Sheet1!Sales+\"Sales[Net]\"+Sales(1)", nullptr},
      {"Sales[Net (", nullptr},
  };
  check(kCases, [&](const char* text) { return change_tables_text(text, changes, kGrid); });
}

TEST(Tables, RenamedColumns) {
  ColumnChanges changes;
  changes.add("Sales", "Net", "Sum");
  changes.add("sales", "a#'b", "[c] d");
  changes.add("", "own", "Mine");
  constexpr Change kCases[] = {
      {"SUM(Sales[Net])", "SUM(Sales[Sum])"},
      {"sales[[#This Row],[NET]]*Sales[[#Headers],[Net]:[Gross]]",
       "sales[[#This Row],[Sum]]*Sales[[#Headers],[Sum]:[Gross]]"},
      {"Sales[a'#''b]+Sales[[a'#''b]]", "Sales['[c'] d]+Sales[['[c'] d]]"},
      {"Sales[@Net]+Sales[@[Net]]", "Sales[@Sum]+Sales[@[Sum]]"},
      {"Sales2[Net]+Sales[#All]+Sales['#All]+Sales[]", nullptr},
      {"Net+[1]!Sales[Net]+\"Sales[Net]\"+[Net]", nullptr},
      {"[@Own]+[[#Totals],[Own]]+Sales[Own]", "[@Mine]+[[#Totals],[Mine]]+Sales[Own]"},
  };
  check(kCases, [&](const char* text) { return change_columns_text(text, changes, kGrid); });
}

TEST(Sheets, AreAskedForByName) {
  const auto formula =
      parse("Data!A1+'it''s'!B1+DATA!C1+SUM(X:Y!A1)+[1]Z!A1+[b]Z!A1+#REF!A1+Q!Rate", kGrid);
  ASSERT_TRUE(formula);
  std::string asked;
  const auto note = [&](std::string_view name) {
    asked.append(name).append(" ");
    return name != "Q";
  };
  EXPECT_EQ(unknown_sheet(*formula, note), "Q");
  EXPECT_EQ(asked, "Data it's DATA X Y Q ");
}

TEST(Ranges, OfText) {
  const struct {
    const char* text;
    const char* ranges;  // sheet and range of each, with a blank behind
  } cases[] = {
      {"Sheet1!$A$1", "Sheet1!A1 "},
      {"'it''s'!$B$2:$A$1", "it's!A1:B2 "},
      {"(S!$A:$B,S!$1:$2)", "S!A1:B1048576 S!A1:XFD2 "},
      {"A1", "!A1 "},
      {"S!A1+1", ""},
      {"S:T!A1", ""},
      {"[1]S!A1", ""},
      {"S!A1:INDEX(A:A,2)", ""},
      {"S!#REF!", ""},
      {"Rate", ""},
      {"(", ""},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    std::string ranges;
    for (const auto& [sheet, range] : ranges_of_text(text, kGrid))
      ranges += sheet + "!" + print_range(range) + " ";
    EXPECT_EQ(ranges, expected);
  }
  EXPECT_EQ(absolute_range_text("a b", {0, 1, 2, 2}), "'a b'!$C$1:$C$2");
  EXPECT_EQ(absolute_range_text("S", {0, 0, 2, 2}), "S!$C$1");
}

// The form of each cell is what its stretch says, wherever the stretch was asked for.
TEST(SharedFormulas, HaveOneFormForAStretch) {
  constexpr Grid kSmall{24, 24};
  constexpr const char* kTexts[] = {
      "A1",       "E5+S!$B$7",   "$A$1:E9",    "E9:$F$20",   "SUM(C3:D22,T!E5)",
      "5:9",      "B:D+C$3:D9",  "$5:8",       "A24:$X24+1", "E$20:F3+A2",
      "E5:E$6+1", "D4:$D20+F24", "X1+$E9:$E$2"};
  constexpr Move::Kind kKinds[] = {Move::Kind::kInsert, Move::Kind::kRemove};
  SharedAdjuster::Form form;
  SharedAdjuster::Form other;
  const auto check = [&](const Move& move, const char* text, bool own_sheet) {
    const Adjuster adjuster(move, "S", kSmall);
    const SharedAdjuster shared(adjuster, text, {4, 4}, own_sheet);
    const auto read = [&](CellAddress from, SharedAdjuster::Form& its) {
      int& place = move.axis == Axis::kRows ? from.row : from.column;
      const CellAddress at = from;
      const auto to = own_sheet ? moved(place, move) : place;
      if (to) place = *to;
      if (to) shared.read_form(at, from, its);
      return to && shared.is_like_beside(at);
    };
    for (int i = 0; i < kSmall.rows; ++i) {
      const CellAddress from = move.axis == Axis::kRows ? CellAddress{i, 4} : CellAddress{4, i};
      if (!read(from, form)) continue;
      ASSERT_GE(shared.last_alike(from), shared.along(from));
      for (int j = 0; j < kSmall.rows * kSmall.columns; ++j) {
        const CellAddress cell{j / kSmall.columns, j % kSmall.columns};
        const int place = shared.along(cell);
        if (place < shared.along(from) || place > shared.last_alike(from)) continue;
        if (!read(cell, other)) continue;
        ASSERT_EQ(form, other) << from.row << ' ' << from.column << ", " << cell.row << ' '
                               << cell.column;
      }
    }
  };
  for (const char* text : kTexts) {
    for (const Move::Kind kind : kKinds) {
      for (const Axis axis : {Axis::kRows, Axis::kColumns}) {
        for (const bool own_sheet : {true, false}) {
          SCOPED_TRACE(text);
          ASSERT_NO_FATAL_FAILURE(check({axis, kind, 6, 3}, text, own_sheet));
        }
      }
    }
  }
}

}  // namespace
}  // namespace engine::formula
