// A parsed calculation.
//
// Names are settled while parsing: a local variable is a slot of the calculation's frame, a
// function is a pointer to its record. Operators of one rank that follow one another form one flat
// node, so that a long sum is not a deep tree.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "devhost/calc/builtins.h"
#include "devhost/calc/tokens.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/values.h"

namespace devhost {

struct Node;
using NodePtr = std::unique_ptr<Node>;

// One "name = value" of Let or While.
struct Binding {
  // The name of a $variable, in lower case; empty for a local one.
  std::u16string variable;
  std::size_t slot = 0;
  NodePtr value;
};

struct Node {
  enum class Kind {
    kConstant,
    kLocal,
    kVariable,
    kNegate,
    kNot,
    // children[0] operators[0] children[1] operators[1] ...
    kOperators,
    kBuiltin,
    kExternal,
    // Pairs of test and result; an odd last child is the result when no test holds.
    kCase,
    // The result is the only child.
    kLet,
    // The condition and the result are the children.
    kWhile,
  };

  explicit Node(Kind wanted) : kind(wanted) {}

  Kind kind;
  // Where the name of a function stands.
  Position position;
  Value constant;
  std::u16string variable;
  std::size_t slot = 0;
  std::vector<NodePtr> children;
  std::vector<Symbol> operators;
  const Builtin* builtin = nullptr;
  const RegisteredFunction* external = nullptr;
  std::vector<Binding> bindings;
  // What While repeats.
  std::vector<Binding> repeated;
};

struct Calculation {
  NodePtr root;
  // How many slots the frame needs.
  std::size_t slots = 0;
};

}  // namespace devhost
