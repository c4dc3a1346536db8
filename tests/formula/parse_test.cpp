#include <gtest/gtest.h>

#include <string>

#include "engine/formula/formula.h"
#include "tests/formula/grid.h"

namespace engine::formula {
namespace {

struct Printed {
  const char* formula;
  const char* printed;
};

// Case is settled, everything else comes back as it was written.
constexpr Printed kPrinted[] = {
    {"(1+2)*3", "(1+2)*3"},
    {"sum(a1:b2,$C$3)", "SUM(A1:B2,$C$3)"},
    {"'it''s'!a1", "'it''s'!A1"},
    {"true=false", "TRUE=FALSE"},
    {"#n/a+1e3", "#N/A+1E3"},
    {R"({1,"a";-2.5,true})", R"({1,"a";-2.5,TRUE})"},
    {"rate*myFunction(a1)", "rate*myFunction(A1)"},
    {"sheet1!a:$b", "sheet1!A:$B"},
    {"xlookup(2,a:a,$1:3)", "XLOOKUP(2,A:A,$1:3)"},
};

// Texts that come back byte by byte.
constexpr const char* kUnchanged[] = {
    " SUM( A1 : B2 ,\n 3 ) ",
    "-2^2%",
    R"(--A1&"say ""hi""")",
    "1<>2<=3>=4",
    ".5+5.+1E-7",
    "IF(,,)",
    "TODAY()",
    "SUM (A1)",
    "(A1,B2:C3)",
    "Sheet1!$A$1:$B$2,Sheet1!$D$4",
    "A1:C3 B2:D4",
    "A1:INDEX(B:B,3)",
    "OFFSET(A1,1,1):C9",
    "B2:A1",
    "'A:B'!C1",
    "Sheet1:Sheet3!A1",
    "'My sheet:It''s'!A1:B2",
    "Übersicht!A1+データ!B2",
    "Q1!A1",
    "2024!A1",
    "[1]Sheet1!A1",
    "[1]Jan:Dec!A1",
    "'[12]Sheet x'!A1",
    "[Book1.xlsx]Sheet1!A1",
    "'[Book 1.xlsx]Sheet1'!A1:B2",
    R"('C:\my dir\[Book.xls]It''s'!A1)",
    "'http://a/[b.xlsx]C'!$A$1",
    "[2]!'EUR,X'*2",
    "[1]!Rate",
    "[0]!Rate",
    "#REF!A1:B2",
    "#REF!Rate",
    "Sheet1!#REF!",
    "#REF!+1",
    "SUM(#REF!)",
    "Sheet1!Rate",
    "Table1[]",
    "Table1[Net]",
    "Table1[[#This Row],[Net]:[Tax]]",
    "SUM(Table1[[#Headers],[#Data],[a '[b'] c]])",
    "[@Net]*[@[Gross sum]]",
    "A1#",
    "SUM(Table1[Net])#",
    "@A1:A9",
    "LAMBDA(x,x+1)(2)(3)",
    "_xlfn.NORM.S.DIST(1,TRUE)",
    "F.TEST(A1,B1)",
    "YTD2024+ABCD1",
    "A1:Abcd1:Abcd3!B2",
    "LOG10(A1)+A0",
    "\\x+_y.z?",
};

std::string reprint(const char* formula) {
  const auto parsed = parse(formula, kGrid);
  return parsed ? print(*parsed) : "(refused)";
}

TEST(Parse, PrintsWhatItParsed) {
  for (const auto& [formula, printed] : kPrinted) {
    SCOPED_TRACE(formula);
    EXPECT_EQ(reprint(formula), printed);
  }
  for (const char* formula : kUnchanged) {
    SCOPED_TRACE(formula);
    EXPECT_EQ(reprint(formula), formula);
  }
}

// What some programs put into files, and no spreadsheet lets a person type.
TEST(Parse, TakesMoreFromFiles) {
  const ParseOptions options = ParseOptions::of_book(kGrid);
  std::string many = "F(1";
  for (int i = 0; i < 300; ++i) many += ",1";
  const std::string cases[] = {"SUM((-4,3),(A1,2))",
                               "=A1",
                               "SUM(A1:YTD2024)",
                               R"('C:\dir\Book.xls'!Rate)",
                               "LEN(\"" + std::string(300, 'x') + "\")",
                               many + ")",
                               "\"" + std::string(10000, 'x') + "\""};
  const auto none = [](std::string_view) { return false; };
  for (const std::string& formula : cases) {
    SCOPED_TRACE(formula);
    const auto typed = parse(formula, kGrid);
    EXPECT_TRUE(!typed || unknown_sheet(*typed, none));
    const auto parsed = parse(formula, options);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(print(*parsed), formula);
    EXPECT_FALSE(unknown_sheet(*parsed, none));
  }
  EXPECT_FALSE(parse(std::string(70000, 'x'), options));
}

// The tree with brackets around everything that stands over something.
std::string outline(const Formula& formula, std::size_t root) {
  const Node& node = formula.nodes[root];
  if (node.first == root) return std::string(formula.text_of(node));
  std::string parts;
  for (std::size_t i = root; i > node.first;) {
    const std::size_t child = i - 1;
    parts.insert(0, outline(formula, child)).insert(0, " ");
    i = formula.nodes[child].first;
  }
  std::string name(1, formula.text[node.mark]);
  if (node.kind == NodeKind::kBinary && node.value == static_cast<int>(Operator::kIntersection))
    name = "blank";
  if (node.kind == NodeKind::kCall) name = "call";
  if (node.kind == NodeKind::kInvoke) name = "invoke";
  return "[" + name + parts + "]";
}

struct Outlined {
  const char* formula;
  const char* outline;
};

constexpr Outlined kOutlines[] = {
    {"1+2*3", "[+ 1 [* 2 3]]"},
    {"1-2-3", "[- [- 1 2] 3]"},
    {"2^3^2", "[^ [^ 2 3] 2]"},
    {"-2^2", "[^ [- 2] 2]"},
    {"2^-3%", "[^ 2 [% [- 3]]]"},
    {"1&2=3+4", "[= [& 1 2] [+ 3 4]]"},
    {"-A1:B2", "[- A1:B2]"},
    {"A1:B2:C3", "[: A1:B2 C3]"},
    {"(A1,B1 C1:F(2))", "[( [, A1 [blank B1 [: C1 [call 2]]]]]"},
    {"@A1#+1", "[+ [@ [# A1]] 1]"},
    {"F(1+2,,3)(4)", "[invoke [call [+ 1 2]  3] 4]"},
};

TEST(Parse, BindsAsOperatorsDo) {
  for (const auto& [formula, expected] : kOutlines) {
    SCOPED_TRACE(formula);
    const auto parsed = parse(formula, kGrid);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(outline(*parsed, parsed->nodes.size() - 1), expected);
  }
}

struct Refused {
  const char* formula;
  int position;
};

constexpr Refused kRefused[] = {
    {"", 0},
    {"1+", 2},
    {"1 2", 2},
    {"=1", 0},
    {"SUM(A1", 6},
    {"SUM(A1))", 7},
    {"SUM(A1;B1)", 6},
    {"A1+*2", 3},
    {"\"abc", 4},
    {"\"ä😀\"+}", 6},
    {"{1,2;3}", 6},
    {"{A1}", 1},
    {"{}", 1},
    {"{-TRUE}", 2},
    {"#FOO!", 0},
    {"1:2:", 4},
    {"1,2", 1},
    {"(A1,2)", 4},
    {"A1 5", 3},
    {"5#", 1},
    {"A1##", 3},
    {"$A$", 0},
    {"'a b", 4},
    {"'a b'A1", 5},
    {"''!A1", 1},
    {"'a:b:c'!A1", 4},
    {"Sheet1!", 7},
    {"Sheet1!+1", 7},
    {"Sheet1!5", 7},
    {"[x]Sheet1", 3},
    {"[x[1]]Sheet1!A1", 2},
    {"'[x.xlsx'!A1", 8},
    {"'[]S'!A1", 1},
    {"'[a][b]S'!A1", 4},
    {"'a]b'!A1", 2},
    {"(-4,3)", 3},
    {"Table1[[#All]", 13},
    {"Table1[a[b]]", 8},
    {"1.2.3", 3},
    {"A1×B1", 2},
    {"\xC3(", 0},
    {"3(4)", 1},
};

TEST(Parse, TellsTheFirstBadCharacter) {
  for (const auto& [formula, position] : kRefused) {
    SCOPED_TRACE(formula);
    ParseError error;
    EXPECT_FALSE(parse(formula, kGrid, &error));
    EXPECT_EQ(error.kind, ParseError::Kind::kSyntax);
    EXPECT_EQ(error.position, position);
  }
}

struct Beyond {
  const char* formula;
  int position;
  const char* xlsx;  // the address in the error, null when the formula is accepted
  const char* xls;
};

constexpr Beyond kBeyond[] = {
    {"1+XFD1048576", 2, nullptr, "XFD1048576"},
    {"1+$A$1048577", 2, "A1048577", "A1048577"},
    {"IV65536", 0, nullptr, nullptr},
    {"Sheet1!IW1", 7, nullptr, "IW1"},
    {"A65537", 0, nullptr, "A65537"},
    {"A1:XFE1", 0, "A1:XFE1", "A1:XFE1"},
    {"A:IW", 0, nullptr, "A:IW"},
    {"XFE:XFF", 0, "XFE:XFF", "XFE:XFF"},
    {"1:65537", 0, nullptr, "1:65537"},
    {"XFE1", 0, nullptr, nullptr},  // a name
};

// Of books whose format came before tables and spills.
TEST(Parse, RefusesLaterForms) {
  constexpr Refused kCases[] = {
      {"1+Table1[Net]", 2}, {"[@Net]", 0}, {"SUM(A1#)", 6}, {"LAMBDA(x,x)(2)", 11}};
  ParseOptions options(kGrid);
  options.later_forms = false;
  for (const auto& [formula, position] : kCases) {
    SCOPED_TRACE(formula);
    ParseError error;
    EXPECT_FALSE(parse(formula, options, &error));
    EXPECT_EQ(error.position, position);
  }
  EXPECT_TRUE(parse("[1]Sheet1!A1+IF(TRUE,1)", options));
}

TEST(Parse, RefusesReferencesBeyondTheGrid) {
  for (const auto& [formula, position, xlsx, xls] : kBeyond) {
    for (const bool is_xls : {false, true}) {
      SCOPED_TRACE(std::string(formula) + (is_xls ? " in .xls" : ""));
      const char* const address = is_xls ? xls : xlsx;
      ParseError error;
      EXPECT_EQ(parse(formula, is_xls ? Grid{65536, 256} : kGrid, &error).has_value(),
                address == nullptr);
      if (address == nullptr) continue;
      EXPECT_EQ(error.kind, ParseError::Kind::kBeyondGrid);
      EXPECT_EQ(error.position, position);
      EXPECT_EQ(error.address, address);
    }
  }
}

std::string repeated(const std::string& text, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

TEST(Parse, KeepsTheLimits) {
  using Kind = ParseError::Kind;
  const struct {
    const char* what;
    std::string formula;
    bool valid;
    Kind kind;
    int position;
  } cases[] = {
      {"8192 characters", repeated("1+", 4095) + "11", true, {}, 0},
      {"8193 characters", repeated("1+", 4096) + "1", false, Kind::kTooLong, 0},
      {"8190 characters, more bytes",
       "\"" + repeated("ä", 255) + "\"" + repeated(R"(&"ää")", 1586),
       true,
       {},
       0},
      {"text of 255", R"(1&")" + repeated("😀", 127) + R"(""")", true, {}, 0},
      {"text of 256", R"(1&")" + repeated("😀", 128) + "\"", false, Kind::kLongText, 2},
      {"255 arguments", "1+F(" + repeated(",", 254) + ")", true, {}, 0},
      {"256 arguments", "1+F(" + repeated(",", 255) + ")", false, Kind::kManyArguments, 2},
      {"deep", repeated("(", 100) + "1" + repeated(")", 100), true, {}, 0},
      {"too deep", repeated("(", 8000), false, Kind::kSyntax, 256},
      {"too many signs", repeated("-", 8000) + "1", false, Kind::kSyntax, 256},
  };
  for (const auto& [what, formula, valid, kind, position] : cases) {
    SCOPED_TRACE(what);
    ParseError error;
    EXPECT_EQ(parse(formula, kGrid, &error).has_value(), valid);
    if (valid) continue;
    EXPECT_EQ(error.kind, kind);
    EXPECT_EQ(error.position, position);
    EXPECT_EQ(error.length, kind == Kind::kTooLong ? 8193 : 0);
  }
}

struct R1C1Case {
  const char* a1;
  const char* r1c1;  // as it reads in D11
};

constexpr R1C1Case kR1C1[] = {
    {"D11", "RC"},
    {"A1", "R[-10]C[-3]"},
    {"$A$1", "R1C1"},
    {"E$12", "R12C[1]"},
    {"$D12", "R[1]C4"},
    {"A1:$B$2", "R[-10]C[-3]:R2C2"},
    {"D11:D11", "RC:RC"},
    {"11:11", "R"},
    {"5:5", "R[-6]"},
    {"$1:12", "R1:R[1]"},
    {"D:D", "C"},
    {"$A:$C", "C1:C3"},
    {"SUM('a b'!A:A,Rate)*2", "SUM('a b'!C[-3],Rate)*2"},
    {"'A1:B2'!C3", "'A1:B2'!R[-8]C[-1]"},
    {"A1#:INDEX(D:D,3)", "R[-10]C[-3]#:INDEX(C,3)"},
    {"'C:\\a\\[b.xls]D'!D1+[B.xlsx]D!D12", "'C:\\a\\[b.xls]D'!R[-10]C+[B.xlsx]D!R[1]C"},
};

constexpr CellAddress kD11{10, 3};

ParseOptions r1c1_options() {
  ParseOptions options(kGrid);
  options.notation = Notation::kR1C1;
  options.base = kD11;
  return options;
}

TEST(R1C1, GoesBothWays) {
  for (const auto& [a1, r1c1] : kR1C1) {
    SCOPED_TRACE(a1);
    const auto from_a1 = parse(a1, kGrid);
    ASSERT_TRUE(from_a1);
    EXPECT_EQ(print(*from_a1, Notation::kR1C1, kD11), r1c1);
    const auto from_r1c1 = parse(r1c1, r1c1_options());
    ASSERT_TRUE(from_r1c1);
    EXPECT_EQ(print(*from_r1c1), a1);
    EXPECT_EQ(print(*from_r1c1, Notation::kR1C1, kD11), r1c1);
  }
}

TEST(R1C1, ReadsWhatItWouldNotPrint) {
  constexpr R1C1Case kCases[] = {
      {"A1", "r[-10]c[-3]"}, {"A1048576", "R[-11]C[-3]"},  // over the edge to the other side
      {"XFD11", "RC[-4]"},   {"D1", "R[1048566]C"},
      {"E12", "R[+1]C[+1]"}, {"R(Rx,RC1x,Table[C])", "R(Rx,RC1x,Table[C])"},
  };
  for (const auto& [a1, r1c1] : kCases) {
    SCOPED_TRACE(r1c1);
    const auto parsed = parse(r1c1, r1c1_options());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(print(*parsed), a1);
  }
}

TEST(R1C1, RefusesWhatA1WouldReadDifferently) {
  constexpr Refused kCases[] = {{"1+A1", 2}, {"$R1", 0}, {"A:RC", 1}, {"RC:A", 2}, {"R[C", 3}};
  for (const auto& [formula, position] : kCases) {
    SCOPED_TRACE(formula);
    ParseError error;
    EXPECT_FALSE(parse(formula, r1c1_options(), &error));
    EXPECT_EQ(error.position, position);
  }
  ParseError error;
  EXPECT_FALSE(parse("R1C16385", r1c1_options(), &error));
  EXPECT_EQ(error.address, "XFE1");
}

}  // namespace
}  // namespace engine::formula
