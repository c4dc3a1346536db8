#include "host/function_table.h"

#include <algorithm>
#include <vector>

#include "functions/families.h"
#include "host/general_functions.h"

namespace {

std::vector<bind::Row> join_families() {
  const auto general = general_functions();
  std::vector<bind::Row> rows(general.begin(), general.end());
  for (const Family family : function_families()) {
    const auto more = family();
    rows.insert(rows.end(), more.begin(), more.end());
  }
  std::sort(rows.begin(), rows.end(),
            [](const bind::Row& a, const bind::Row& b) { return a.id < b.id; });
  return rows;
}

}  // namespace

std::span<const bind::Row> function_table() {
  static const std::vector<bind::Row> table = join_families();
  return table;
}
