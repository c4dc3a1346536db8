#include "tests/support/fake_library.h"

#include <charconv>

namespace fakes {

namespace {

template <class T>
std::string fill(T* place, T value) {
  if (place) *place = value;
  return place ? " >" : " -";
}

}  // namespace

std::string Speaker::describe(double value, int&) {
  char digits[32] = {};
  return " " + std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

std::string Speaker::describe(const wchar_t* text, int&) {
  if (!text) return " -";
  std::string narrow = " ";
  for (; *text; ++text) narrow += *text < 128 ? static_cast<char>(*text) : '?';
  return narrow;
}

std::string Speaker::describe(const char* text, int&) {
  return text ? " " + std::string(text) : " -";
}

std::string Speaker::describe(std::string_view data, int&) { return " " + std::string(data); }

std::string Speaker::describe(const void* object, int&) const {
  if (object == scenario_.font) return object ? " font" : " -";
  if (object == scenario_.format) return " format";
  return object == scenario_.sheet ? " sheet" : object ? " object" : " -";
}

std::string Speaker::describe(int* place, int& outputs) const {
  return fill(scenario_.writes_outputs ? place : nullptr, ++outputs);
}
std::string Speaker::describe(bool* place, int& outputs) const {
  return fill(scenario_.writes_outputs ? place : nullptr, ++outputs % 2 != 0);
}
std::string Speaker::describe(double* place, int& outputs) const {
  return fill(scenario_.writes_outputs ? place : nullptr, ++outputs + 0.5);
}
std::string Speaker::describe(Operator* place, int& outputs) const {
  return fill(scenario_.writes_outputs ? place : nullptr, static_cast<Operator>(++outputs));
}
std::string Speaker::describe(const wchar_t** place, int& outputs) const {
  const std::wstring text = L"text" + std::to_wstring(++outputs);
  return fill(place, scenario_.output_texts.emplace_back(text).c_str());
}
// The seed is told, as it is what the caller can change.
std::string Speaker::describe(Format** place, int& outputs) const {
  const std::string seed = describe(static_cast<const void*>(*place), outputs);
  *place = scenario_.format;
  return seed + ">";
}
std::string Speaker::describe(const char** place, int&) const {
  *place = scenario_.bytes.data();
  return " >";
}
std::string Speaker::describe(unsigned* place, int&) const {
  *place = static_cast<unsigned>(scenario_.bytes.size());
  return " >";
}

Workbook::Workbook() {
  scenario.font = &font;
  scenario.format = &format;
  scenario.column = &column;
  scenario.filter = &filter;
  scenario.sheet = &sheet;
}

}  // namespace fakes

libxl::Book* xlCreateBookW() { return fakes::next_book; }
libxl::Book* xlCreateXMLBookW() { return fakes::next_book; }
