// The prompt: statements typed one by one.
#pragma once

#include <functional>
#include <string>

namespace devhost {

// Reads statements from the terminal, with history and completion of function names, or plainly
// from standard input when that is no terminal, until its end. A statement goes on over lines until
// its brackets are closed.
void run_prompt(const std::function<void(const std::string& statement)>& carry_out);

}  // namespace devhost
