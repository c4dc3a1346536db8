// The external functions there must be, written down apart from the code and texts they are held
// against: what each takes and passes on, and what it gives.
#pragma once

#include <map>
#include <string>
#include <vector>

struct ListedArgument {
  // What the host passes: "i" integer, "n" number, "f" flag, "t" text, "b" bytes, "Format" and the
  // like the handle of a class or number, "&Format" a handle that seeds an output, "_" something
  // that is not read. What it does not: ">3" three outputs, "!-1" what is always passed on.
  std::string kind;
  // What the operation is told without the parameter, if that is not what the kind has for empty.
  std::string fallback;
  bool is_optional;

  bool is_parameter() const { return kind[0] != '>' && kind[0] != '!'; }
};

struct ListedFunction {
  std::string name;
  // The handle is a parameter more, which all functions of a class have.
  bool has_handle;
  std::vector<ListedArgument> arguments;
  // Fields between bars: a letter as above for what the operation returns, "e" for an enumeration,
  // "@" for the address of a format, and the outputs as the fakes fill them. "#Sheet" is a fresh
  // handle, "-" no result. "!" is listed elsewhere, with calls that show it.
  std::string result;

  // "XL_Book_AddSheet 2-3".
  std::string with_counts() const;
};

// By id.
const std::map<int, ListedFunction>& listed_functions();
