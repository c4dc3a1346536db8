#include "engine/formula/file_text.h"

#include <gtest/gtest.h>

#include "engine/formula/function_names.h"
#include "tests/formula/grid.h"

namespace engine::formula {
namespace {

struct Case {
  const char* shown;
  const char* stored;
};

constexpr Case kBothWays[] = {
    {"XLOOKUP(1,A:A,B:B)", "_xlfn.XLOOKUP(1,A:A,B:B)"},
    {"1+SORT(FILTER(A1:A9,B1:B9))", "1+_xlfn._xlws.SORT(_xlfn._xlws.FILTER(A1:A9,B1:B9))"},
    {"NORM.S.DIST(A1,TRUE)&\"IFS(\"", "_xlfn.NORM.S.DIST(A1,TRUE)&\"IFS(\""},
    {"LET(x,A1,y,x*2,x+y+z)", "_xlfn.LET(_xlpm.x,A1,_xlpm.y,_xlpm.x*2,_xlpm.x+_xlpm.y+z)"},
    {"MAP(A1:A3,LAMBDA(v,v+w))+v", "_xlfn.MAP(A1:A3,_xlfn.LAMBDA(_xlpm.v,_xlpm.v+w))+v"},
    {"LET(f,LAMBDA(n,n),f(2))", "_xlfn.LET(_xlpm.f,_xlfn.LAMBDA(_xlpm.n,_xlpm.n),_xlpm.f(2))"},
    {"SUM(A1#)", "SUM(_xlfn.ANCHORARRAY(A1))"},
    {"SORT(A1:A3)#", "_xlfn.ANCHORARRAY(_xlfn._xlws.SORT(A1:A3))"},
    {"1+ IFS (A1,2)", "1+ _xlfn.IFS (A1,2)"},
    {"@A1:A9+@Rate", "_xlfn.SINGLE(A1:A9)+_xlfn.SINGLE(Rate)"},
    {"@A1#", "_xlfn.SINGLE(_xlfn.ANCHORARRAY(A1))"},
};

TEST(FileText, GoesBothWays) {
  for (const auto& [shown, stored] : kBothWays) {
    SCOPED_TRACE(shown);
    EXPECT_EQ(to_file_text(shown, kGrid), stored);
    EXPECT_EQ(from_file_text(stored, kGrid), shown);
  }
}

TEST(FileText, CompletesThisRow) {
  constexpr Case kCases[] = {
      {"Sales[@Net]", "Sales[[#This Row],[Net]]"},
      {"Sales[@[Net sum]:[Tax]]", "Sales[[#This Row],[Net sum]:[Tax]]"},
      {"Sales[@]", "Sales[#This Row]"},
      {"[@Net]*2", "Here[[#This Row],[Net]]*2"},
      {"SUM([Net])", "SUM(Here[Net])"},
  };
  for (const auto& [shown, stored] : kCases) {
    SCOPED_TRACE(shown);
    EXPECT_EQ(to_file_text(shown, kGrid, "Here"), stored);
  }
}

TEST(FileText, LeavesTheRest) {
  for (const char* shown : {"SUM(A1)", "Table1[#All]", "_xlfn.XLOOKUP(1,A:A,B:B)", "MyIFS(A1)",
                            "'IFS('!A1", "IFS+#N/A", "IFS(", "NETWORKDAYS.INTL(A1,B1)"})
    EXPECT_FALSE(to_file_text(shown, kGrid)) << shown;
  // Unknown functions, prefixes in unusual places, and what would read differently without them.
  for (const char* stored : {"SUM(A1)", "_xlfn.FUTURE(A1)", "_xlfn.SORT(A1:A3)",
                             "_xlfn.SINGLE(A1+1)", "_xlfn.SINGLE(A1):B2", "_xlpm.x+1",
                             "_xlfn.LET(_xlpm.x1,2,_xlpm.x1)", "\"_xlfn.IFS(1)\"", "_xlfn.IFS("})
    EXPECT_FALSE(from_file_text(stored, kGrid)) << stored;
}

TEST(FunctionNames, AreFoundInAnyCase) {
  for (const char* name : {"sum", "Abs", "ZTEST", "xlookup", "F.DIST", "z.test", "Filter"})
    EXPECT_TRUE(is_known_function(name)) << name;
  for (const char* name : {"", "SU", "SUMM", "_xlfn.IFS"}) EXPECT_FALSE(is_known_function(name));
  EXPECT_EQ(file_prefix("ifs"), "_xlfn.");
  EXPECT_EQ(file_prefix("Sort"), "_xlfn._xlws.");
  EXPECT_EQ(file_prefix("IF"), "");
}

}  // namespace
}  // namespace engine::formula
