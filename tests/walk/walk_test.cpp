#include "tests/walk/walk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/script.h"
#include "devhost/calc/syntax_error.h"
#include "devhost/calc/tokens.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/plugin_module.h"
#include "tests/walk/files.h"

namespace walk {
namespace {

using devhost::utf16_from_utf8;
using devhost::utf8_from_utf16;

constexpr Group (*kGroups[])() = {
    books,
    sheets_of_books,
    formats_of_books,
    dates_and_colors,
    settings,
    cells,
    structure,
    moves,
    views,
    pages,
    names_and_links,
    rules,
    filters_and_tables,
    pictures,
    formats,
    fonts,
    general,
};

struct Format {
  const char* name;
  Formats flag;
  const char* create;
};
constexpr Format kFormats[] = {
    {".xlsx", kXlsx, "XL_XlCreateXMLBook"},
    {".xls", kXls, "XL_XlCreateBook"},
};

// A calculation's text in the notation of the tables.
std::string shown(const devhost::Value& value) {
  std::string text = utf8_from_utf16(value.units());
  for (std::size_t at = 0; (at = text.find('\r', at)) != std::string::npos;)
    text.replace(at, 1, "¶");
  static const std::regex kAddress("0x[0-9a-f]+");
  return std::regex_replace(text, kAddress, "0x");
}

// A host with the plug-in, which works off cases.
class Walker {
 public:
  // Gives what a statement came to, and puts the value into its variable.
  std::string run(const std::string& text) try {
    failure_.reset();
    const std::u16string units = utf16_from_utf8(text);
    const std::vector<devhost::Statement> statements = devhost::parse_script(units);
    EXPECT_EQ(statements.size(), 1U);
    devhost::Value value = evaluator_.evaluate(statements[0].calculation);
    std::string result = shown(value);
    if (!statements[0].variable.empty()) {
      evaluator_.set_variable(statements[0].variable, std::move(value));
    }
    for (const devhost::Token& token : devhost::tokenize(units))
      if (token.kind == devhost::Token::Kind::kName) note_call(token.text);
    return failure_ ? *failure_ : result;
  } catch (const devhost::SyntaxError& error) {
    return error.what();
  }

  void check(const std::string& statement, const std::string& expected) {
    const std::string result = run(statement);
    if (expected == "#") {
      EXPECT_TRUE(result.find_first_not_of("0123456789") == std::string::npos && result != "0" &&
                  handles_.insert(result).second)
          << statement << "\n  gives " << result << ", not a new handle";
    } else {
      if (result != expected)
        ADD_FAILURE() << statement << "\n  gives " << result << "\n    not " << expected;
    }
  }

  const std::set<std::u16string>& called() const { return called_; }

 private:
  void note_call(std::u16string_view name) {
    if (const auto* function = devhost::FunctionRegistry::instance().find(name))
      called_.insert(function->name);
  }

  void note_failure(const devhost::Failure& failure) {
    static const std::regex kHandle("#[0-9]+");
    if (failure_) return;
    failure_ = "? " + std::to_string(failure.code) + " " +
               std::regex_replace(shown(devhost::Value(failure.message)), kHandle, "#");
  }

  devhost::Evaluator evaluator_{[this](const devhost::Failure& failure) { note_failure(failure); }};
  std::optional<std::string> failure_;
  std::set<std::string> handles_;
  std::set<std::u16string> called_;
};

// Saves and loads the workbook, and works off the cases that tell of a loaded one.
void work_off_again(Walker& walker, const Group& group, const Format& format) {
  SCOPED_TRACE("loaded anew");
  walker.run("$saved = XL_Book_SaveRaw ( $book ; \"saved\" )");
  walker.check("XL_Book_Release ( $book )", "");
  walker.check(std::string("$book = ") + format.create, "#");
  walker.check("XL_Book_LoadRaw ( $book ; $saved )", "1");
  walker.check("$sheet = XL_Book_GetSheet ( $book ; 0 )", "#");
  for (const Case& each : group.cases) {
    if (!each.reloaded || !(each.formats & format.flag)) continue;
    const bool is_same = std::string_view(each.reloaded) == kSame;
    walker.check(each.statement, is_same ? each.result : each.reloaded);
  }
}

void work_off(Walker& walker, const Group& group, const Format& format) {
  SCOPED_TRACE(std::string(group.name) + " in " + format.name);
  walker.check(std::string("$book = ") + format.create, "#");
  walker.check("$sheet = XL_Book_AddSheet ( $book ; \"Data\" )", "#");
  for (const Case& each : group.cases)
    if (each.formats & format.flag) walker.check(each.statement, each.result);
  work_off_again(walker, group, format);
  for (const Case& each : group.last)
    if (each.formats & format.flag) walker.check(each.statement, each.result);
}

TEST(Walk, EveryFunctionDoesAndTellsWhatItShall) {
  constexpr std::int16_t kVersion = 56;
  const devhost::PluginModule plugin(PLUGIN, kVersion);
  const std::filesystem::path folder =
      std::filesystem::path(testing::TempDir()) / "walk_over_functions";
  std::filesystem::create_directories(folder);
  std::filesystem::current_path(folder);
  write_files();
  Walker walker;
  for (const Format& format : kFormats)
    for (const auto& group : kGroups) work_off(walker, group(), format);
  for (const auto* function : devhost::FunctionRegistry::instance().all()) {
    if (!function->visible()) continue;
    EXPECT_TRUE(walker.called().contains(function->name))
        << utf8_from_utf16(function->name) << " is called by no case";
  }
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace walk
