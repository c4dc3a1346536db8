#include "runtime/bind.h"

#include <gtest/gtest.h>

namespace {

using libxl::Sheet;

// Signatures as the library and named functions have them. Nobody calls them.
class Methods {
 public:
  virtual void plain(int first, const wchar_t* second, bool third) = 0;
  virtual bool between(int first, int* second, int third) = 0;
  virtual bool last(int first, int* second, const wchar_t** third) = 0;
  virtual bool object(int first, libxl::Format** second) = 0;
  virtual bool bytes(int first, const char** second, unsigned* third) = 0;
  virtual libxl::Filter number() const = 0;
  virtual void takes_number(int first, libxl::IgnoredError second) = 0;
  virtual void fills_number(int first, libxl::ErrorType* second) = 0;
  virtual void none() = 0;

 protected:
  ~Methods() = default;
};
bind::Entry<libxl::CellType> entry(Sheet&, int, int) { return {libxl::CellEmpty}; }

struct Answers {
  bool outputs_come_last;
  bool outputs_have_values;
  bool numbers_are_plain;
};

template <auto Method>
constexpr Answers kFound = {bind::Shape<Method>::outputs_come_last,
                            bind::Shape<Method>::outputs_have_values,
                            bind::Shape<Method>::numbers_are_plain};

// The compiler refuses a method with a no as a row.
TEST(Binding, TellsWhichMethodsCanBeRows) {
  struct Case {
    const char* name;
    Answers found;
    Answers expected;
  };
  const Case kCases[] = {
      {"plain", kFound<&Methods::plain>, {true, true, true}},
      {"between", kFound<&Methods::between>, {false, true, true}},
      {"last", kFound<&Methods::last>, {true, true, true}},
      {"object", kFound<&Methods::object>, {true, false, true}},
      {"bytes", kFound<&Methods::bytes>, {true, false, true}},
      {"number", kFound<&Methods::number>, {true, true, false}},
      {"takes number", kFound<&Methods::takes_number>, {true, true, false}},
      {"fills number", kFound<&Methods::fills_number>, {true, true, false}},
      {"none", kFound<&Methods::none>, {true, true, true}},
      {"entry", kFound<entry>, {true, true, true}},
      {"getMerge", kFound<&Sheet::getMerge>, {true, true, true}},
      {"getNamedRange", kFound<&Sheet::getNamedRange>, {false, true, true}},
      {"namedRange", kFound<&Sheet::namedRange>, {true, true, true}},
      {"readNum", kFound<&Sheet::readNum>, {true, false, true}},
      {"cellType", kFound<&Sheet::cellType>, {true, true, false}},
      {"addIgnoredError", kFound<&Sheet::addIgnoredError>, {true, true, false}},
      {"addDataValidation", kFound<&Sheet::addDataValidation>, {true, true, false}},
      {"getPicture", kFound<&libxl::Book::getPicture>, {true, false, true}},
      {"filterType", kFound<&libxl::FilterColumn::filterType>, {true, true, false}},
      {"getCustomFilter", kFound<&libxl::FilterColumn::getCustomFilter>, {true, true, true}},
  };
  for (const auto& [name, found, expected] : kCases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(found.outputs_come_last, expected.outputs_come_last);
    EXPECT_EQ(found.outputs_have_values, expected.outputs_have_values);
    EXPECT_EQ(found.numbers_are_plain, expected.numbers_are_plain);
  }
}

TEST(Binding, TellsWhichDefaultsAMethodTakes) {
  using SetCol = bind::Shape<&Sheet::setCol>;
  using SetHeader = bind::Shape<&Sheet::setHeader>;
  using WriteComment = bind::Shape<&Sheet::writeComment>;
  using SplitInfo = bind::Shape<&Sheet::splitInfo>;
  struct Case {
    const char* name;
    bool found;
    bool expected;
  };
  const Case kCases[] = {
      {"none", SetCol::takes_defaults<>, true},
      {"flag and object", SetCol::takes_defaults<nullptr, false>, true},
      {"swapped", SetCol::takes_defaults<false, nullptr>, false},
      {"integer for a flag", SetCol::takes_defaults<nullptr, 0>, false},
      {"all", SetCol::takes_defaults<0, 0, 8.5, nullptr, false>, true},
      {"one too many", SetCol::takes_defaults<0, 0, 0, 8.5, nullptr, false>, false},
      {"integer for a double", SetHeader::takes_defaults<1>, true},
      {"flag for a double", SetHeader::takes_defaults<true>, false},
      {"text", WriteComment::takes_defaults<nullptr, 129, 75>, true},
      {"integer for a text", WriteComment::takes_defaults<0, 129, 75>, false},
      {"double for an integer", WriteComment::takes_defaults<129, 75.5>, false},
      {"enumeration", bind::Shape<&Sheet::setPaper>::takes_defaults<libxl::PaperA4>, true},
      {"output", SplitInfo::takes_defaults<0>, false},
  };
  for (const auto& [name, found, expected] : kCases) EXPECT_EQ(found, expected) << name;
}

}  // namespace
