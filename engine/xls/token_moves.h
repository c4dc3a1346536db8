// What insertion and removal of rows and columns make of tokens that stay in the file: those of
// conditional formats and charts, which the engine has no text of.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine::xls {

struct TokenMove {
  const formula::Move& move;
  const Grid& grid;
  bool own_sheet = false;  // references without a sheet mean the one that is changed
  std::function<bool(std::uint16_t entry)> means_sheet;  // whether others do
  // Where relative references count from, before and after.
  CellAddress before;
  CellAddress after;
};

// Moves the references in tokens; their size stays. A token that is not known ends it: then
// nothing has changed.
void move_tokens(std::string& tokens, const TokenMove& how);

}  // namespace engine::xls
