#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

struct Outcome {
  int status;
  // Standard output and standard error, as they come.
  std::string output;
};

// What calls hand out for cells' formats leaves books to the process.
Outcome run(const std::string& arguments) {
  const std::string command =
      "ASAN_OPTIONS=detect_leaks=0 " + std::string(XLCALC) + " " + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return {-1, "no process"};
  std::string output;
  std::array<char, 256> buffer = {};
  while (fgets(buffer.data(), buffer.size(), pipe) != nullptr) output += buffer.data();
  return {WEXITSTATUS(pclose(pipe)), output};
}

struct Case {
  std::string arguments;
  int status;
  std::string output;
};

void check(const Case& wanted) {
  SCOPED_TRACE(wanted.arguments);
  const Outcome result = run(wanted.arguments);
  EXPECT_EQ(result.status, wanted.status);
  EXPECT_EQ(result.output, wanted.output);
}

TEST(Program, AnswersWithOutputAndStatus) {
  const std::string script = testing::TempDir() + "/program_test.xlcalc";
  std::ofstream(script) << "$x = Fake_Add ( $n ; 1 )\n$x\n\"数\" & Fake_Fail\nList ( 1 ; 2 )\n";
  const std::string told = "Fake_Fail failed with code 42: made to fail: ß\n";
  const std::string failure = "xlcalc: line 1, column 1: " + told + "    Fake_Fail\n    ^\n";
  const std::string in_script = "line 3, column 7: " + told +
                                "    \"数\" & Fake_Fail\n"
                                "           ^\n";
  const std::string plugin = std::string(" --plugin ") + FAKE_PLUGIN;
  const std::string failed =
      R"("failures": [
    {"line": 1, "column": 5, "function": "Fake_Fail", "code": 42, "message": "made to fail: ß"}
  ],
)";
  const Case kCases[] = {
      {"eval '1/4 & ¶ & $n' n=a=b" + plugin, 0, ".25\na=b\n"},
      {"eval '\"\"'" + plugin, 0, ""},
      {"eval '-$n * -.25' n=2 --strict" + plugin, 0, ".5\n"},
      {"eval '--(1)'" + plugin, 0, "1\n"},
      {"run /dev/null" + plugin, 0, ""},
      {"run /" + plugin, 2, "xlcalc: script \"/\" cannot be read\n"},
      {"eval '$n = 5' n=5" + plugin, 0, "1\n"},
      {"eval '1 +'" + plugin, 1,
       "xlcalc: line 1, column 4: a value is expected here\n"
       "    1 +\n"
       "       ^\n"},
      {"eval 'Fake_Add'" + plugin, 1,
       "xlcalc: line 1, column 1: Fake_Add takes 1 to 2 parameters, not 0: Fake_Add ( … )\n"
       "    Fake_Add\n"
       "    ^\n"},
      {"eval '(\n\t\033[2J 5 6'" + plugin, 1,
       "xlcalc: line 2, column 3: a value is expected here\n"
       "     \uFFFD[2J 5 6\n"
       "      ^\n"},
      {"eval Fake_Fail" + plugin, 0, failure + "?\n"},
      {"eval Fake_Fail --strict" + plugin, 1, failure},
      {"run " + script + " n=4" + plugin, 0,
       "5\nxlcalc: " + script + ", " + in_script + "数?\n1\n2\n"},
      {"run " + script + " n=4 --strict" + plugin, 1, "5\nxlcalc: " + script + ", " + in_script},
      {"run /nowhere" + plugin, 2, "xlcalc: script \"/nowhere\" cannot be read\n"},
      {"functions count" + plugin, 0, "Fake_Count ( … )\n    Described.\n"},
      {"functions count --extn-version 55" + plugin, 0, "Fake_Count ( … )\n"},
      {"functions constant" + plugin, 0, "Fake_Constant ( … )\n    Described.\n"},
      {"functions fake_cont" + plugin, 1,
       "xlcalc: no function mentions \"fake_cont\"; did you mean Fake_Count?\n"},
      {plugin + " < " + script, 0,
       "1\nxlcalc: line 3, column 7: " + told +
           "    \"数\" & Fake_Fail\n           ^\n数?\n1\n2\n"},
      {"eval 1 --plugin /nowhere", 2, "xlcalc: plug-in \"/nowhere\": No such file or directory\n"},
      {"eval '1 & Fake_Fail & \"\\\"\\\\\\¶\" & Char ( 7 )' --json" + plugin, 0,
       "{\n  \"results\": [\n    {\"line\": 1, \"value\": \"1?\\\"\\\\¶\\u0007\"}\n  ],\n  " +
           failed + "  \"error\": null\n}\n"},
      {"run " + script + " n=.25 --json --strict" + plugin, 1,
       "{\n  \"results\": [\n    {\"line\": 2, \"value\": 1.25}\n  ],\n"
       "  \"failures\": [\n    {\"line\": 3, \"column\": 7, \"function\": \"Fake_Fail\", "
       "\"code\": 42, \"message\": \"made to fail: ß\"}\n  ],\n  \"error\": null\n}\n"},
      {"eval nothing --json" + plugin, 1,
       "{\n  \"results\": [],\n  \"failures\": [],\n  \"error\": {\"line\": 1, \"column\": 1, "
       "\"message\": \"there is no function or variable nothing\"}\n}\n"},
  };
  for (const Case& one : kCases) check(one);
  check({"evl 1", 2, "xlcalc: \"evl\" is no command; --help tells what is\n"});
  check({"show a b c d", 2, "xlcalc: \"d\" is not expected here; --help tells what is\n"});
  for (const char* arguments : {"eval", "eval 1 n", "eval 1 =2", "eval 1 --nothing", "run", "show",
                                "nothing", "--nothing"}) {
    EXPECT_EQ(run(arguments).status, 2) << arguments;
  }
  std::filesystem::remove(script);
}

// Two sheets of which one is hidden; every kind of value, and what a terminal would obey.
constexpr const char* kMakesBook = R"calc(
$sheet = XL_Book_AddSheet ( $book ; "Prices" )
$price = XL_Book_AddFormat ( $book )
XL_Format_SetNumFormat ( $price ; XL_Book_AddCustomNumFormat ( $book ; "#,##0.00 \"€\"" ) )
$day = XL_Book_AddFormat ( $book )
XL_Format_SetNumFormat ( $day ; XL_NumDateDMY )
XL_Sheet_WriteStr ( $sheet ; 1 ; 1 ; "数据é" & Char ( 27 ) & "[2J¶x" )
XL_Sheet_WriteNum ( $sheet ; 1 ; 2 ; 1234.5 ; $price )
XL_Sheet_WriteNum ( $sheet ; 2 ; 2 ; XL_Book_DatePack ( $book ; 2026 ; 11 ; 22 ) ; $day )
XL_Sheet_WriteBool ( $sheet ; 3 ; 1 ; 1 )
XL_Sheet_WriteError ( $sheet ; 3 ; 2 ; XL_ErrorDiv0 )
XL_Sheet_WriteFormulaNum ( $sheet ; 4 ; 2 ; "SUM(C2:C3)"; 1 )
$hidden = XL_Book_AddSheet ( $book ; "Many" )
While ( i = 0 ; i < 60 ; i = i + XL_Sheet_WriteNum ( $hidden ; i ; 0 ; i ) ; i )
XL_Sheet_SetHidden ( $hidden )
XL_Book_Save ( $book ; $file )
XL_Book_Release ( $book )
)calc";

TEST(Program, ShowsWorkbooks) {
  const std::string folder = testing::TempDir() + "/program_test_books";
  std::filesystem::create_directories(folder);
  const std::string script = folder + "/make.calc";
  const std::string sheets =
      "1  Prices  B2:C5   active\n"
      "2  Many    A1:A60  hidden\n"
      "\n"
      "Prices\n"
      "  │ B           │          C\n"
      "──┼─────────────┼───────────\n"
      "2 │ 数据é\uFFFD[2J↵x │ 1,234.50 €\n"
      "3 │             │  22-Nov-26\n"
      "4 │ TRUE        │ #ERROR\n"
      "5 │             │          1\n";
  for (const std::string kind : {"xlsx", "xls"}) {
    const std::string file = folder + "/book." + kind;
    std::ofstream(script) << "$book = "
                          << (kind == "xls" ? "XL_XlCreateBook" : "XL_XlCreateXMLBook")
                          << kMakesBook;
    ASSERT_EQ(run("run " + script + " --strict file=" + file).status, 0);
    // What a file is called does not count.
    const std::string other = folder + "/other." + (kind == "xls" ? "xlsx" : "xls");
    std::filesystem::copy_file(file, other, std::filesystem::copy_options::overwrite_existing);
    const Case kCases[] = {
        {"show " + file, 0, sheets},
        {"show " + other, 0, sheets},
        {"show " + file + " prices '$c3:c9' --formulas", 0,
         "  │ C\n"
         "──┼────────────\n"
         "3 │   22-Nov-26\n"
         "4 │ #ERROR\n"
         "5 │ =SUM(C2:C3)\n"},
        {"show " + file + " 1 3:4", 0,
         "  │ B    │ C\n"
         "──┼──────┼──────────\n"
         "3 │      │ 22-Nov-26\n"
         "4 │ TRUE │ #ERROR\n"},
        {"show " + file + " D:E", 0, "\"Prices\" holds nothing there.\n"},
        {"show " + file + " 2 | tail -3", 0,
         "49 │ 48\n50 │ 49\nRows 51 to 60 are left out; --all prints them.\n"},
        {"show " + file + " 2 a2:a60 | tail -1", 0, "60 │ 59\n"},
        {"show " + file + " many --all | tail -1", 0, "60 │ 59\n"},
        {"show " + file + " 1 B4:C5 --json", 0,
         "{\n  \"results\": [\n    {\"sheet\": \"Prices\", \"state\": \"visible\", \"active\": "
         "true, "
         "\"range\": \"B2:C5\", \"cells\": [{\"cell\": \"B4\", \"value\": true, \"shown\": "
         "\"TRUE\"}, "
         "{\"cell\": \"C4\", \"value\": null, \"shown\": \"#ERROR\"}, {\"cell\": \"C5\", "
         "\"value\": 1, "
         "\"shown\": \"1\", \"formula\": \"SUM(C2:C3)\"}]}\n  ],\n  \"failures\": [],\n"
         "  \"error\": null\n}\n"},
        {"show " + file + " 3", 1, "xlcalc: there is no sheet \"3\" but \"Prices\", \"Many\"\n"},
        {"show " + file + " 1 B", 1, "xlcalc: \"B\" is no range of cells as B2:D20, B:D or 2:20\n"},
    };
    for (const Case& one : kCases) check(one);
    std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    const Outcome damaged = run("show " + file);
    EXPECT_EQ(damaged.status, 1);
    EXPECT_NE(damaged.output.find(file), std::string::npos) << damaged.output;
  }
  check(
      {"show /nowhere.xlsx", 1, "xlcalc: file \"/nowhere.xlsx\" cannot be opened: no such file\n"});
  const Outcome looked_up = run("functions XL_Sheet_SetMerge");
  EXPECT_EQ(looked_up.status, 0);
  EXPECT_NE(looked_up.output.find("\n        XL_Sheet_SetMerge ("), std::string::npos)
      << "without its example: " << looked_up.output;
  std::filesystem::remove_all(folder);
}

}  // namespace
