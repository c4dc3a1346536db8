#include "tests/support/calls.h"

#include <algorithm>
#include <stdexcept>

#include "host/function_table.h"

namespace calls {

std::string narrow(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text)
    bytes += unit == u'\r' ? '|' : unit < 128 ? static_cast<char>(unit) : '?';
  return bytes;
}

std::string Outcome::text() const { return narrow(value.units()); }

devhost::ValueList parameters(const std::vector<Argument>& arguments) {
  devhost::ValueList list;
  list.values.assign(arguments.begin(), arguments.end());
  return list;
}

Outcome call(const bind::Row& row, const std::vector<Argument>& arguments) {
  const devhost::ValueList params = parameters(arguments);
  const devhost::EnvironmentObject environment;
  Outcome outcome{};
  outcome.code = row.function(row.id, environment, params, outcome.value);
  outcome.last_error = g_last_error;
  outcome.message = g_last_error_message;
  return outcome;
}

const bind::Row& find(std::string_view name) {
  const auto table = function_table();
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const auto& row) { return name == row.name; });
  if (found == table.end()) throw std::out_of_range(std::string(name));
  return *found;
}

Outcome call(std::string_view name, const std::vector<Argument>& arguments) {
  return call(find(name), arguments);
}

devhost::ContainerObject container(
    const std::vector<std::pair<std::string, std::string>>& streams) {
  devhost::ContainerObject made;
  for (const auto& [type, payload] : streams)
    made.add({type[0], type[1], type[2], type[3]}, {payload.begin(), payload.end()});
  return made;
}

}  // namespace calls
