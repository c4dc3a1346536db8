// What sheets and ranges may be called.
#pragma once

#include <string>

#include "engine/api/book_context.h"

namespace engine::api {

// False, with the message set, when no sheet may have the name. `renamed` is the sheet that gets
// it, if there is one already: in other case it may have its own.
bool check_sheet_name(BookContext& book, const std::string& name, const Sheet* renamed = nullptr);

// The same of a defined name, but for names of tables.
bool check_defined_name(BookContext& book, const std::string& name);

}  // namespace engine::api
