// Every function of the table: what it passes on and gives, against the list, and how it fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <sstream>

#include "host/function_table.h"
#include "tests/support/call_test.h"
#include "tests/support/listed_functions.h"

namespace {

using calls::call;
using calls::class_of;
using calls::Handles;

// "readNum" of "XL_Sheet_ReadNum".
std::string method_of(std::string_view function) {
  std::string method(function.substr(function.rfind('_') + 1));
  method[0] = static_cast<char>(std::tolower(method[0]));
  return method;
}

std::vector<calls::Argument> with_zeros(long handle, int count) {
  std::vector<calls::Argument> arguments = {handle};
  arguments.resize(static_cast<std::size_t>(count), 0);
  return arguments;
}

class EveryFunction : public calls::CallTest {
 protected:
  template <class Check>
  void for_each_row(Check check) {
    for (const bind::Row& row : function_table()) {
      if (class_of(row.name).empty()) continue;
      SCOPED_TRACE(row.name);
      workbook_.scenario.heard.clear();
      check(row, class_of(row.name));
    }
  }

  // An argument of a call as the host gives it and as the library hears of it.
  struct Given {
    calls::Argument value;
    std::string heard;
  };

  // What no other parameter is given and what none is without. Only flags may be alike: which of
  // them is which shows as the parameters become more.
  Given given(const ListedArgument& argument, int place) const {
    const std::string number = std::to_string(place);
    const std::u16string text = u"t" + std::u16string(1, static_cast<char16_t>(u'A' + place));
    const std::string kind = argument.kind;
    if (kind == "_") return {77, ""};
    if (kind == "i") return {-100 - place, " " + std::to_string(-100 - place)};
    if (kind == "n") return {place + 0.5, " " + number + ".5"};
    if (kind == "f" && argument.fallback == "0") return {1, " 1"};
    if (kind == "f") return {0, " 0"};
    if (kind == "t") return {text.c_str(), " " + calls::narrow(text)};
    if (kind == "b") return {text.c_str(), " " + calls::narrow(text) + " 2"};
    if (kind == "Sheet") return {objects_.sheet, " sheet"};
    if (kind == "Format") return {objects_.format, " format"};
    if (kind == "Font") return {objects_.font, " font"};
    if (kind == "&Format") return {objects_.format, " format>"};
    return {set_object(objects_.book, kind, value_as_object(place)), " " + number};
  }

  static std::string omitted(const ListedArgument& argument) {
    const std::map<std::string, const char*> kEmpty = {
        {"_", ""},       {"f", " 1"},    {"t", " "},       {"b", "  0"},
        {"Sheet", " -"}, {"Font", " -"}, {"Format", " -"}, {"&Format", " ->"}};
    if (!argument.fallback.empty()) return " " + argument.fallback;
    const auto found = kEmpty.find(argument.kind);
    return found == kEmpty.end() ? " 0" : found->second;
  }

  // The library answers -1.5 for every number, so that no kind of number looks like another.
  static constexpr double kAnswer = -1.5;

  std::string result_of(const ListedFunction& function) const {
    std::ostringstream address;
    address << static_cast<const void*>(workbook_.scenario.format);
    const std::map<std::string, std::string> kReturned = {{"f", "1"},    {"i", "-1"},
                                                          {"n", "-1.5"}, {"e", "4294967295"},
                                                          {"t", "text"}, {"@", address.str()}};
    if (function.result == "-") return "";
    std::string result;
    std::istringstream fields(function.result);
    for (std::string field; std::getline(fields, field, '|'); result += '|') {
      const auto found = kReturned.find(field);
      result += found == kReturned.end() ? field : found->second;
    }
    return result.substr(0, result.size() - 1);
  }

  // The call with so many of the parameters after the handle.
  CallCase call_with(const ListedFunction& function, int count) const {
    CallCase made{function.name, {}, method_of(function.name), result_of(function)};
    int place = 0;
    for (const ListedArgument& argument : function.arguments) {
      if (argument.kind[0] == '!') {
        made.heard += " " + argument.kind.substr(1);
      } else if (argument.kind[0] == '>') {
        for (int i = 0; i < std::stoi(argument.kind.substr(1)); ++i) made.heard += " >";
      } else if (place++ < count) {
        const auto [value, heard] = given(argument, place);
        made.arguments.push_back(value);
        made.heard += heard;
      } else {
        made.heard += omitted(argument);
      }
    }
    return made;
  }

  Handles objects_{workbook_};
};

// With no parameter but the handle, with one more and so on up to all of them: a required one that
// does not arrive is empty.
TEST_F(EveryFunction, PassesOnAndGivesWhatIsListed) {
  workbook_.scenario.number = kAnswer;
  for (const bind::Row& row : function_table()) {
    SCOPED_TRACE(row.name);
    ASSERT_TRUE(listed_functions().contains(row.id));
    const ListedFunction& function = listed_functions().at(row.id);
    if (function.result == "!") continue;
    const auto parameters =
        std::count_if(function.arguments.begin(), function.arguments.end(),
                      [](const ListedArgument& argument) { return argument.is_parameter(); });
    for (int count = 0; count <= parameters; ++count) check(call_with(function, count));
  }
}

// What is asked, or what is given, depends on the parameters of these.
TEST_F(EveryFunction, OfItsOwnShapeHasCasesOfItsOwn) {
  fakes::next_book = &workbook_.book;
  const CallCase kCases[] = {
      {"XL_Version", {}, "", VORNELIX_VERSION},
      {"XL_VersionAutoUpdate", {}, "", VORNELIX_VERSION_DIGITS},
      {"XL_GetLastErrorMessage", {}, "", ""},
      {"XL_GetLastError", {}, "", "0"},
      {"XL_XlCreateBook", {}, "", "#Book"},
      {"XL_XlCreateXMLBook", {}, "", "#Book"},
      {"XL_Book_SaveRaw", {u""}, "saveRaw > >", "bytes"},
      {"XL_Book_GetPicture", {2}, "getPicture 2 > >", "2.jpg"},
      {"XL_Book_ErrorMessage", {}, "", "ok"},
      {"XL_Sheet_SetTabColor", {10}, "setTabColor 10", ""},
      {"XL_Sheet_SetTabColor", {255, 0}, "setTabColor 255 0 0", ""},
      {"XL_Sheet_SetTabColor", {1, 2, 3}, "setTabColor 1 2 3", ""},
      {"XL_Sheet_ReadCell", {1, 2}, "cellType 1 2; readNum 1 2 ->", "1"},
      {"XL_Sheet_ReadCell", {1, 2, objects_.format}, "cellType 1 2; readNum 1 2 format>", "1"},
  };
  NoError();
  g_last_error_message.clear();
  std::set<std::string> shown;
  for (const CallCase& each : kCases) {
    check(each);
    shown.insert(each.function);
  }
  for (const bind::Row& row : function_table()) {
    const bool is_elsewhere = listed_functions().at(row.id).result != "!";
    EXPECT_TRUE(is_elsewhere || shown.contains(row.name)) << row.name;
  }
}

TEST_F(EveryFunction, MissesItsObject) {
  for_each_row([&](const bind::Row& row, const std::string& type) {
    g_last_error_message.clear();
    auto outcome = call(row, with_zeros(0, row.min));
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, 10);
    EXPECT_EQ(outcome.message, type + " object  #0 not found");

    const Handles handles(workbook_);
    const bool is_book = type == "Book";
    outcome = call(row, with_zeros(is_book ? handles.sheet : handles.book, row.min));
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, -2);
    EXPECT_EQ(outcome.message, type + " expected. Found " + (is_book ? "Sheet" : "Book"));

    outcome = call(row, with_zeros(987654321, row.min));
    EXPECT_EQ(outcome.last_error, 10);
    EXPECT_EQ(outcome.message, type + " object  #987654321 not found");
    EXPECT_TRUE(workbook_.scenario.heard.empty());
  });
}

TEST_F(EveryFunction, TellsTheLibrarysFailureAndStoresNothing) {
  const std::set<std::string> kNeverAsk = {"XL_Book_ErrorMessage", "XL_Book_Release"};
  workbook_.scenario.message = "row 1048576 is out of range 0..1048575";
  for_each_row([&](const bind::Row& row, const std::string& type) {
    if (kNeverAsk.contains(row.name)) return;
    const long handle = Handles(workbook_).of_class(type);
    const auto outcome = call(row, with_zeros(handle, row.min));
    const bool reads_cell = std::string(row.name) == "XL_Sheet_ReadCell";
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, reads_cell ? 10300 : 1);
    EXPECT_EQ(outcome.message.substr(0, 38), workbook_.scenario.message);
    EXPECT_TRUE(outcome.value.is_empty());
  });
}

}  // namespace
