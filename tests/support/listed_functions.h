// The external functions there must be, written down apart from the code and texts they are held
// against.
#pragma once

#include <map>
#include <string>

// Name and parameter counts by id: "XL_Book_AddSheet 2-3".
std::map<int, std::string> listed_functions();
