// Names and ids of the tables of a book, for tables that are added.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"

namespace engine::xlsx {

class TableNames {
 public:
  // Those of all tables of a package. Throws FileError when one is damaged.
  explicit TableNames(const Parts& parts);

  // The name with the first number behind it that no table and no defined name has.
  std::string free(const std::string& name, const Workbook& book);
  unsigned next_id() { return ++last_id_; }

  // What was given out is in use.
  void settle() noexcept;
  // What was given out since is free again.
  void take_back() noexcept;

 private:
  struct Given {
    std::set<std::string>::iterator name;
    int* number;  // behind the name, and what it was before
    int former;
  };

  std::set<std::string> used_;               // folded
  std::map<std::string, int> last_numbers_;  // given out behind a name, folded
  unsigned last_id_ = 0;
  unsigned settled_id_ = 0;
  std::vector<Given> given_;
};

}  // namespace engine::xlsx
