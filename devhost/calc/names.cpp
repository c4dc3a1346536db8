#include "devhost/calc/names.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "devhost/calc/builtins.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

// A slip in every so many letters is taken for one.
constexpr std::size_t kLettersPerSlip = 4;

// Letters to insert, leave out or exchange that make one text of the other, by the rows of the
// table of all pairs of beginnings.
std::size_t distance(std::u16string_view left, std::u16string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t exchanged = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::u16string> known_names() {
  std::vector<std::u16string> names = {u"Case", u"If", u"Let", u"While"};
  for (const auto functions :
       {number_functions(), text_functions(), list_functions(), container_functions()}) {
    for (const Builtin& builtin : functions) names.emplace_back(builtin.name);
  }
  for (const RegisteredFunction* function : FunctionRegistry::instance().all()) {
    names.push_back(function->name);
  }
  return names;
}

std::u16string nearest_name(std::u16string_view name) {
  const std::u16string wanted = to_lower(name);
  std::size_t least = wanted.size() / kLettersPerSlip + 1;
  std::u16string nearest;
  for (std::u16string& known : known_names()) {
    const std::size_t difference =
        std::max(known.size(), wanted.size()) - std::min(known.size(), wanted.size());
    if (difference >= least) continue;
    const std::size_t slips = distance(to_lower(known), wanted);
    if (slips >= least) continue;
    least = slips;
    nearest = std::move(known);
  }
  return nearest;
}

}  // namespace devhost
