// From tree to value.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "devhost/calc/tree.h"
#include "devhost/fm/values.h"

namespace devhost {

// A loop that has not ended by then gives the failed value.
inline constexpr int kMaxIterations = 50000;

// What a function told when it failed.
struct Failure {
  std::u16string function;
  int code;
  std::u16string message;
  Position position;
};

struct Interrupted : std::exception {
  const char* what() const noexcept override { return "interrupted"; }
};

// Evaluates calculations that share their $variables. A function that fails gives "?" and is
// reported; evaluation goes on unless the report throws.
class Evaluator {
 public:
  using Report = std::function<void(const Failure&)>;

  // Evaluation ends with Interrupted once `interrupted` says so; it is asked before every call of
  // an external function and every round of a loop.
  explicit Evaluator(
      Report report, bool (*interrupted)() = [] { return false; })
      : report_(std::move(report)), interrupted_(interrupted) {}

  Value evaluate(const Calculation& calculation);

  // The name includes the "$"; case does not count.
  void set_variable(std::u16string_view name, Value value);

 private:
  Value value_of(const Node& node);
  Value operators(const Node& node);
  Value builtin(const Node& node);
  Value external(const Node& node);
  Value first_that_holds(const Node& node);
  Value while_loop(const Node& node);
  Value variable(const std::u16string& name) const;
  bool holds(const Node& node) { return value_of(node).boolean(); }
  void bind(const std::vector<Binding>& bindings);
  std::vector<Value> arguments(const Node& node);

  void give_way() const {
    if (interrupted_()) throw Interrupted();
  }

  Report report_;
  bool (*interrupted_)();
  // By the name in lower case.
  std::map<std::u16string, Value, std::less<>> variables_;
  std::vector<Value> frame_;
};

}  // namespace devhost
